# Build settings that every target shares, and the function that declares a room.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(NIMBREL_CCACHE ccache)
if(NIMBREL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # It takes compiled headers for what they were made of, of which the tests have some.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${NIMBREL_CCACHE}")
endif()

add_library(nimbrel_settings INTERFACE)
# No contraction of a*b+c: results are the same bits on machines with and without fused operations.
target_compile_options(nimbrel_settings INTERFACE -Wall -Wextra -Wpedantic -Wconversion
                                                  -ffp-contract=off)
# GCC 12 warns of overlapping copies inside std::string's operator+ when it optimises; there are none.
target_compile_options(nimbrel_settings INTERFACE
                       $<$<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>:-Wno-restrict>)
target_include_directories(nimbrel_settings INTERFACE "${CMAKE_SOURCE_DIR}/src")
target_compile_definitions(nimbrel_settings INTERFACE NIMBREL_VERSION="${PROJECT_VERSION}")
if(NIMBREL_WERROR)
  target_compile_options(nimbrel_settings INTERFACE -Werror)
endif()
if(NIMBREL_SANITIZE)
  target_compile_options(nimbrel_settings INTERFACE -fsanitize=${NIMBREL_SANITIZE}
                         -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(nimbrel_settings INTERFACE -fsanitize=${NIMBREL_SANITIZE})
endif()

# nimbrel_compiled_headers(TARGET header... | REUSE_FROM target)
# Headers of libraries that most sources of a target include, compiled once for all of them: it is
# what the build of a tree from nothing spends most on. Sources include what they need all the same.
function(nimbrel_compiled_headers TARGET)
  # Without the first a cache of compilers can't tell what a compiled header was made of. GCC 12 finds
  # faults in std::string's own operators when they come from compiled headers; there are none.
  target_compile_options(${TARGET} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess -Wno-array-bounds -Wno-stringop-overflow>)
  if(ARGV1 STREQUAL "REUSE_FROM")
    target_precompile_headers(${TARGET} REUSE_FROM ${ARGV2})
  else()
    target_precompile_headers(${TARGET} PRIVATE ${ARGN})
  endif()
endfunction()

# nimbrel_room(NAME [ROOMS room...] [LIBRARIES library...] [NOT_ON_WINDOWS source...])
# A library of all sources in the current folder. ROOMS are the rooms below that it may use; a
# room that is not named there cannot be linked, so the order of the layers is held by the build.
# NOT_ON_WINDOWS are sources (patterns of names without their ending) that Windows does without.
function(nimbrel_room NAME)
  cmake_parse_arguments(ROOM "" "" "ROOMS;LIBRARIES;NOT_ON_WINDOWS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cc")
  if(WIN32)
    foreach(name IN LISTS ROOM_NOT_ON_WINDOWS)
      list(FILTER sources EXCLUDE REGEX "/${name}\\.cc$")
    endforeach()
  endif()
  string(REPLACE "/" "_" target "nimbrel_${NAME}")
  list(TRANSFORM ROOM_ROOMS PREPEND nimbrel_)
  if(sources)
    add_library(${target} STATIC ${sources})
    target_link_libraries(${target} PUBLIC nimbrel_settings ${ROOM_ROOMS} ${ROOM_LIBRARIES})
  else()
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE nimbrel_settings ${ROOM_ROOMS} ${ROOM_LIBRARIES})
  endif()
endfunction()
