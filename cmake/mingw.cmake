# Cross-building for Windows with mingw-w64; included by the file of each width, which sets
# NIMBREL_MINGW to the compiler's target.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${NIMBREL_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${NIMBREL_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${NIMBREL_MINGW}-windres)
set(NIMBREL_WIDL ${NIMBREL_MINGW}-widl)

# Nothing of the machine that builds is to get into the programs.
set(CMAKE_FIND_ROOT_PATH /usr/${NIMBREL_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The programs carry no DLL of the compiler.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

set(CMAKE_CROSSCOMPILING_EMULATOR wine)
