# What a build for Windows has in place of the libraries that Debian packages for itself only.

# Headers of libraries that need no more than that, apart from the machine's other headers.
set(NIMBREL_HEADERS "${CMAKE_BINARY_DIR}/include")
foreach(folder fmt nlohmann Random123)
  if(NOT IS_DIRECTORY "/usr/include/${folder}")
    message(FATAL_ERROR "/usr/include/${folder} is missing; scripts/packages.txt names its package")
  endif()
  file(MAKE_DIRECTORY "${NIMBREL_HEADERS}")
  file(CREATE_LINK "/usr/include/${folder}" "${NIMBREL_HEADERS}/${folder}" SYMBOLIC)
endforeach()

add_library(fmt::fmt INTERFACE IMPORTED GLOBAL)
target_include_directories(fmt::fmt INTERFACE "${NIMBREL_HEADERS}")
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED GLOBAL)
target_include_directories(nlohmann_json::nlohmann_json INTERFACE "${NIMBREL_HEADERS}")
set(NIMBREL_RANDOM123_INCLUDE "${NIMBREL_HEADERS}" CACHE PATH "" FORCE)

target_compile_definitions(nimbrel_settings INTERFACE UNICODE _UNICODE NOMINMAX _WIN32_WINNT=0x0601)

# nimbrel_idl(TARGET FILE): the header, the identifiers and the type library of an IDL file, in the
# target's build folder. Wine's IDL files stand in for those that mingw-w64 lacks.
function(nimbrel_idl TARGET FILE)
  get_filename_component(name "${FILE}" NAME_WE)
  get_filename_component(source "${FILE}" ABSOLUTE)
  set(width --win64)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(width --win32)
  endif()
  set(folder "${CMAKE_CURRENT_BINARY_DIR}")
  add_custom_command(
    OUTPUT "${folder}/${name}.h" "${folder}/${name}_i.c" "${folder}/${name}.tlb"
    COMMAND ${NIMBREL_WIDL} -I/usr/include/wine/wine/windows ${width} -h -o "${folder}/${name}.h" "${source}"
    COMMAND ${NIMBREL_WIDL} -I/usr/include/wine/wine/windows ${width} -u -o "${folder}/${name}_i.c" "${source}"
    COMMAND ${NIMBREL_WIDL} -I/usr/include/wine/wine/windows ${width} -t -o "${folder}/${name}.tlb" "${source}"
    DEPENDS "${source}" VERBATIM)
  target_sources(${TARGET} PRIVATE "${folder}/${name}.h" "${folder}/${name}_i.c" "${folder}/${name}.tlb")
  target_include_directories(${TARGET} PUBLIC "${folder}")
endfunction()
