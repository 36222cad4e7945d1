# What an installation holds: the library, its one public header, the hosts, and what pkg-config and
# find_package(kivstore) need to find them.
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

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kivstore)
install(EXPORT kivstore FILE kivstoreConfig.cmake NAMESPACE kivstore:: DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kivstoreConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kivstoreConfigVersion.cmake DESTINATION ${package_folder})

# The .pc file starts from the folder that it lies in, so that an installation can be moved; folders
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
configure_file(cmake/kivstore.pc.in ${PROJECT_BINARY_DIR}/kivstore.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kivstore.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
