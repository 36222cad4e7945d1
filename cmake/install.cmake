# What an installation holds: the library, its one public header, the hosts, and what pkg-config and
# find_package(kivstore) need to find them. Beside them, for hosts that stand on the classes themselves, the
# static core with its headers.
include(CMakePackageConfigHelpers)

install(TARGETS kivstore EXPORT kivstore
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/kivstore/general_proc.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kivstore)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(KIVSTORE_HOSTS)
  install(TARGETS kivreport kivadmin DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# On Windows a program on the core needs the table of texts in itself, which no archive brings along.
set(core_libraries "")
if(NOT WIN32)
  set(core_libraries kivstore_core kivstore_creating)
  set_target_properties(kivstore_core PROPERTIES EXPORT_NAME core)
  # The headers include one another from the folder that holds the rooms.
  target_include_directories(kivstore_core INTERFACE
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/kivstore>)
  target_compile_features(kivstore_core INTERFACE cxx_std_20)
  # The services that create stay apart: a program that doesn't ask for them cannot create.
  set_target_properties(kivstore_creating PROPERTIES
    EXPORT_NAME creating
    INTERFACE_LINK_LIBRARIES "$<BUILD_INTERFACE:kivstore_platform>;$<INSTALL_INTERFACE:kivstore_core>")
  install(TARGETS ${core_libraries} EXPORT kivstore ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY app archive foundation game platform probes records store
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kivstore
          FILES_MATCHING PATTERN "*.h" PATTERN posix EXCLUDE PATTERN win32 EXCLUDE)
endif()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kivstore)
install(EXPORT kivstore FILE kivstoreConfig.cmake NAMESPACE kivstore:: DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kivstoreConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kivstoreConfigVersion.cmake DESTINATION ${package_folder})

# A .pc file starts from the folder that it lies in, so that an installation can be moved; folders
# that were given in full it names in full.
set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  set(pc_prefix "\${pcfiledir}/${up}")
endif()
set(pc_libdir "\${prefix}")
cmake_path(APPEND pc_libdir "${CMAKE_INSTALL_LIBDIR}")
set(pc_includedir "\${prefix}")
cmake_path(APPEND pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
set(pc_names kivstore)
if(core_libraries)
  list(APPEND pc_names kivstore-core)
endif()
foreach(name ${pc_names})
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# Everything that `cmake --install` takes, and nothing else: the tests stay unbuilt.
add_custom_target(installed DEPENDS kivstore ${core_libraries})
foreach(name kivreport kivadmin kivstore_manuals)
  if(TARGET ${name})
    add_dependencies(installed ${name})
  endif()
endforeach()
