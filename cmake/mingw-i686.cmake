set(NIMBREL_MINGW i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR i686)
# SSE gives doubles of 64 bits everywhere; hosts call in with a stack of 4-byte alignment.
set(CMAKE_CXX_FLAGS_INIT "-mstackrealign -msse2 -mfpmath=sse")
include("${CMAKE_CURRENT_LIST_DIR}/mingw.cmake")
