# The CMake package, which provides ovapp::ovapp, ovapp::host and the functions for plug-ins, and the
# pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ovapp${ovapp_qt_suffix})

# A program does not run with an older Qt than the one with which it was built.
string(REGEX MATCH "^[0-9]+\\.[0-9]+" qt_version ${Qt${QT_MAJOR_VERSION}_VERSION})
set(host_path ${OVAPP_HOST_DIR}/ovapp-host${ovapp_qt_suffix}${CMAKE_EXECUTABLE_SUFFIX})
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
    DESTINATION ${package_dir} COMPONENT development)
install(EXPORT ovappTargets NAMESPACE ovapp:: DESTINATION ${package_dir} COMPONENT development)

set(pc_libraries "")
foreach(library ovapp ovdoc ovcore ovdatabase ovshape ovsystem)
    string(APPEND pc_libraries " -l${library}${ovapp_qt_suffix}")
endforeach()
file(RELATIVE_PATH prefix_path /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/ovapp.pc.in ${PROJECT_BINARY_DIR}/ovapp${ovapp_qt_suffix}.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ovapp${ovapp_qt_suffix}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# By default, `cpack` creates an archive of one folder with the files for running the host, without the
# development files.
set(CPACK_GENERATOR ZIP CACHE STRING "ZIP, or DEB as in the preset debian")
if(CPACK_GENERATOR STREQUAL "DEB")
    include(cmake/OvappDebian.cmake)
else()
    set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
    set(CPACK_COMPONENTS_ALL runtime host)
    set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
    set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
endif()
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/OvappCPackCheck.cmake)
include(CPack)
