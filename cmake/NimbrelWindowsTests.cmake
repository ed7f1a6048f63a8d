# GoogleTest from its sources, as its package is for this machine only.
if(NOT IS_DIRECTORY /usr/src/googletest)
  message(FATAL_ERROR "/usr/src/googletest is missing; scripts/packages-windows.txt names its package")
endif()
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
