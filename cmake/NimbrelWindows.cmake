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

# What workbooks need, as scripts/windows-libraries builds it. Without it there is no room for them.
math(EXPR NIMBREL_WIDTH "8 * ${CMAKE_SIZEOF_VOID_P}")
set(NIMBREL_WINDOWS_LIBRARIES "${CMAKE_SOURCE_DIR}/build/windows-libs-${NIMBREL_WIDTH}" CACHE PATH
    "Where scripts/windows-libraries has put the libraries of workbooks")
set(NIMBREL_WINDOWS_WORKBOOKS OFF)
if(EXISTS "${NIMBREL_WINDOWS_LIBRARIES}/versions")
  set(NIMBREL_WINDOWS_WORKBOOKS ON)
  find_library(NIMBREL_ZLIB libz.a REQUIRED)
  # nimbrel_windows_library(TARGET FILE DEFINITION LIBRARIES...)
  function(nimbrel_windows_library TARGET FILE DEFINITION)
    add_library(${TARGET} STATIC IMPORTED GLOBAL)
    set_target_properties(${TARGET} PROPERTIES
      IMPORTED_LOCATION "${NIMBREL_WINDOWS_LIBRARIES}/lib/${FILE}"
      INTERFACE_INCLUDE_DIRECTORIES "${NIMBREL_WINDOWS_LIBRARIES}/include"
      INTERFACE_COMPILE_DEFINITIONS "${DEFINITION}"
      INTERFACE_LINK_LIBRARIES "${ARGN}")
  endfunction()
  nimbrel_windows_library(EXPAT::EXPAT libexpat.a XML_STATIC)
  nimbrel_windows_library(PkgConfig::LIBZIP libzip.a ZIP_STATIC "${NIMBREL_ZLIB}" advapi32)
  nimbrel_windows_library(PkgConfig::XLSXWRITER libxlsxwriter.a "" "${NIMBREL_ZLIB}")
else()
  message(STATUS "Workbooks are left out: scripts/windows-libraries has not built their libraries")
endif()

# nimbrel_idl(TARGET FILE): the header, the identifiers and the type library of an IDL file, in the
# target's build folder. Wine has the IDL files and the type library that mingw-w64 lacks.
file(GLOB NIMBREL_STDOLE /usr/lib/*/wine/*/stdole2.tlb)
function(nimbrel_idl TARGET FILE)
  if(NOT NIMBREL_STDOLE)
    message(FATAL_ERROR "Wine's stdole2.tlb is missing; scripts/packages-windows.txt names its package")
  endif()
  list(GET NIMBREL_STDOLE 0 stdole)
  get_filename_component(libraries "${stdole}" DIRECTORY)
  get_filename_component(name "${FILE}" NAME_WE)
  get_filename_component(source "${FILE}" ABSOLUTE)
  math(EXPR width "8 * ${CMAKE_SIZEOF_VOID_P}")
  set(made "${CMAKE_CURRENT_BINARY_DIR}/idl/${name}")
  file(MAKE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/idl")
  set(widl ${NIMBREL_WIDL} -I/usr/include/wine/wine/windows "-L${libraries}" --win${width})
  add_custom_command(
    OUTPUT "${made}.h" "${made}_i.c" "${made}.tlb"
    COMMAND ${widl} -h -o "${made}.h" "${source}"
    COMMAND ${widl} -u -o "${made}_i.c" "${source}"
    COMMAND ${widl} -t -o "${made}.tlb" "${source}"
    DEPENDS "${source}" VERBATIM)
  add_custom_target(${TARGET}_idl DEPENDS "${made}.h" "${made}_i.c" "${made}.tlb")
  add_dependencies(${TARGET} ${TARGET}_idl)
  target_sources(${TARGET} PRIVATE "${made}_i.c")
  target_include_directories(${TARGET} SYSTEM PUBLIC "${CMAKE_CURRENT_BINARY_DIR}/idl")
endfunction()
