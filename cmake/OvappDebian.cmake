# The Debian packages that `cpack` builds with the preset debian, one per component.
find_program(GZIP gzip REQUIRED)
set(debian_dir ${PROJECT_SOURCE_DIR}/cmake/debian)

set(runtime_package libovapp${ovapp_qt_suffix}${PROJECT_VERSION_MAJOR})
if(ovapp_qt_suffix)
    set(runtime_package libovapp${ovapp_qt_suffix}-${PROJECT_VERSION_MAJOR})
endif()
set(development_package libovapp${ovapp_qt_suffix}-dev)
set(host_package ovapp-host${ovapp_qt_suffix})
set(qt_development_package_5 qtbase5-dev)
set(qt_development_package_6 qt6-base-dev)

set(CPACK_COMPONENTS_ALL runtime development host)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE ovapp)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "ovapp maintainers <ovapp@ovapp.invalid>")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The shlibs file says which package the users of these libraries depend on. dpkg-shlibdeps determines
# the dependencies of the libraries themselves, and finds them in the build tree.
set(libraries ovapp ovcore ovdatabase ovdoc ovshape ovsystem)
set(shlibs "")
foreach(library IN LISTS libraries)
    string(APPEND shlibs "lib${library}${ovapp_qt_suffix} ${PROJECT_VERSION_MAJOR} "
        "${runtime_package} (>= ${PROJECT_VERSION})\n")
endforeach()
file(CONFIGURE OUTPUT debian/shlibs CONTENT "${shlibs}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/debian/shlibs ${debian_dir}/triggers)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_HOST_DEPENDS runtime)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ${qt_development_package_${QT_MAJOR_VERSION}})
set(CPACK_DEBIAN_HOST_PACKAGE_RECOMMENDS "iputils-ping, traceroute")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION misc)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "application layer of a laser-marking program")
set(about "It connects the program with the plug-ins that provide its features.\n\n")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${about}This package contains the shared libraries.")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${about}\
This package contains the files for building programs and plug-ins: headers,
the CMake package, the pkg-config file, a plug-in template, and the source of
a desktop program.")
set(CPACK_DEBIAN_HOST_DESCRIPTION "${about}\
This package contains an executable without a user interface, which runs a
session and checks plug-ins, with sample documents and sample plug-ins.")

# ovapp_add_compressed(<source> <file name> <component> <directory>): installs a file as <file name>.gz.
function(ovapp_add_compressed source name component directory)
    set(compressed ${PROJECT_BINARY_DIR}/debian/${component}/${name}.gz)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/debian/${component})
    execute_process(COMMAND ${GZIP} -9nc ${source} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    install(FILES ${compressed} DESTINATION ${directory} COMPONENT ${component})
endfunction()

file(STRINGS ${debian_dir}/changelog newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^ovapp \\(${PROJECT_VERSION}\\)")
    message(FATAL_ERROR "cmake/debian/changelog does not begin with version ${PROJECT_VERSION}")
endif()
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    set(package ${${component}_package})
    string(TOUPPER ${component} component_upper)
    set(CPACK_DEBIAN_${component_upper}_PACKAGE_NAME ${package})
    ovapp_add_compressed(${debian_dir}/changelog changelog ${component}
        ${CMAKE_INSTALL_DATADIR}/doc/${package})
    install(FILES ${debian_dir}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()
ovapp_add_compressed(${PROJECT_SOURCE_DIR}/docs/ovapp-host.1 ${host_package}.1 host
    ${CMAKE_INSTALL_MANDIR}/man1)

# The guides, and the API reference, which contains them too.
find_program(DOXYGEN doxygen REQUIRED)
set(reference_dir ${PROJECT_BINARY_DIR}/reference)
add_custom_target(reference ALL
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${reference_dir}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${reference_dir}
    COMMAND ${CMAKE_COMMAND} -E env OVAPP_REFERENCE_DIR=${reference_dir} ${DOXYGEN} docs/Doxyfile
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    VERBATIM)
set(documents_dir ${CMAKE_INSTALL_DATADIR}/doc/${development_package})
install(DIRECTORY ${reference_dir}/html/
    DESTINATION ${documents_dir}/reference COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/
    DESTINATION ${documents_dir} COMPONENT development
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.svg")

install(FILES ${debian_dir}/libovapp1.lintian-overrides
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
    RENAME ${runtime_package} COMPONENT runtime)
