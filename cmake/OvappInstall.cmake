# The CMake package: find_package(ovapp CONFIG) gives ovapp::ovapp and ovapp_add_plugin.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ovapp${ovapp_qt_suffix})

# Programs that were built with a Qt do not run with an older one.
string(REGEX MATCH "^[0-9]+\\.[0-9]+" qt_version ${Qt${QT_MAJOR_VERSION}_VERSION})
configure_package_config_file(cmake/ovappConfig.cmake.in ${PROJECT_BINARY_DIR}/ovappConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ovappVersion.cmake
    COMPATIBILITY SameMajorVersion)
configure_file(cmake/ovappConfigVersion.cmake.in ${PROJECT_BINARY_DIR}/ovappConfigVersion.cmake @ONLY)
install(FILES
        ${PROJECT_BINARY_DIR}/ovappConfig.cmake
        ${PROJECT_BINARY_DIR}/ovappConfigVersion.cmake
        ${PROJECT_BINARY_DIR}/ovappVersion.cmake
        cmake/OvappPlugin.cmake
        cmake/OvappQt.cmake
    DESTINATION ${package_dir})
install(EXPORT ovappTargets NAMESPACE ovapp:: DESTINATION ${package_dir})

# `cpack` packs what is needed to run the host, not what is needed to build against the library, into
# an archive of one folder.
set(CPACK_GENERATOR ZIP)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
include(CPack)
