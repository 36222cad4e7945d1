# What an installation holds: the library, its one public header, the hosts, and what pkg-config and
# find_package(kivstore) need to find them.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS kivstore EXPORT kivstore
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/kivstore/general_proc.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kivstore)
install(EXPORT kivstore FILE kivstoreConfig.cmake NAMESPACE kivstore::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kivstore)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/kivstoreConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
configure_file(cmake/kivstore.pc.in ${CMAKE_BINARY_DIR}/kivstore.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/kivstoreConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kivstore)
install(FILES ${CMAKE_BINARY_DIR}/kivstore.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(KIVSTORE_HOSTS)
  install(TARGETS kivreport kivadmin DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
