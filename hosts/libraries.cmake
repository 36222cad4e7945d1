# What the host programs call and do not write themselves, as kivhost_libraries.
add_library(kivhost_libraries INTERFACE)

if(WIN32)
  # The same packages: two are headers that suit any system, taken without the rest of /usr/include, the
  # C libraries are built from their sources, which scripts/common.sh fetches, and zlib has a package.
  set(headers ${CMAKE_BINARY_DIR}/headers)
  file(MAKE_DIRECTORY ${headers})
  foreach(name CLI nlohmann)
    file(CREATE_LINK /usr/include/${name} ${headers}/${name} SYMBOLIC)
  endforeach()
  set(KIVSTORE_SOURCES ${PROJECT_SOURCE_DIR}/build/sources CACHE PATH "Sources of libraries")
  find_library(ZLIB_LIBRARY libz.a REQUIRED)
  file(GLOB xlsxwriter_sources ${KIVSTORE_SOURCES}/libxlsxwriter/src/*.c)
  add_library(host_libraries_built STATIC
    ${KIVSTORE_SOURCES}/libcsv/libcsv.c ${KIVSTORE_SOURCES}/minizip/ioapi.c
    ${KIVSTORE_SOURCES}/minizip/iowin32.c ${KIVSTORE_SOURCES}/minizip/unzip.c
    ${KIVSTORE_SOURCES}/minizip/zip.c ${KIVSTORE_SOURCES}/utf8proc/utf8proc.c
    ${xlsxwriter_sources}
    ${KIVSTORE_SOURCES}/libxlsxwriter/third_party/md5/md5.c
    ${KIVSTORE_SOURCES}/libxlsxwriter/third_party/tmpfileplus/tmpfileplus.c)
  set_target_properties(host_libraries_built PROPERTIES UNITY_BUILD OFF)
  target_compile_options(host_libraries_built PRIVATE -w)
  target_compile_definitions(host_libraries_built PUBLIC UTF8PROC_STATIC
                             PRIVATE USE_SYSTEM_MINIZIP)
  target_include_directories(host_libraries_built SYSTEM PUBLIC
    ${headers} ${KIVSTORE_SOURCES} ${KIVSTORE_SOURCES}/libcsv
    ${KIVSTORE_SOURCES}/libxlsxwriter/include ${KIVSTORE_SOURCES}/utf8proc)
  target_link_libraries(kivhost_libraries INTERFACE host_libraries_built ${ZLIB_LIBRARY})
else()
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  target_link_libraries(kivhost_libraries INTERFACE CLI11::CLI11 nlohmann_json::nlohmann_json)
  # Those that bring neither a CMake package nor, all of them, one for pkg-config.
  foreach(name IN ITEMS csv:csv.h minizip:minizip/zip.h utf8proc:utf8proc.h
          xlsxwriter:xlsxwriter.h z:zlib.h)
    string(REPLACE ":" ";" name ${name})
    list(GET name 1 header)
    list(GET name 0 name)
    string(TOUPPER ${name} upper)
    find_path(${upper}_INCLUDE ${header} REQUIRED)
    find_library(${upper}_LIBRARY ${name} REQUIRED)
    target_include_directories(kivhost_libraries SYSTEM INTERFACE ${${upper}_INCLUDE})
    target_link_libraries(kivhost_libraries INTERFACE ${${upper}_LIBRARY})
  endforeach()
endif()
