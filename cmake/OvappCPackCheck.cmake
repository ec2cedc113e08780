# Read by `cpack` before it packs. Where things lie and whether they have run paths is settled when a
# build is configured, so that no build serves both kinds of packages.
if(CPACK_GENERATOR STREQUAL "DEB" AND NOT CPACK_DEB_COMPONENT_INSTALL)
    message(FATAL_ERROR "This build is laid out for an archive. Debian packages are made by "
        "`cmake --workflow --preset debian`.")
elseif(CPACK_DEB_COMPONENT_INSTALL AND NOT CPACK_GENERATOR STREQUAL "DEB")
    message(FATAL_ERROR "This build is laid out for Debian packages. Archives are made of others.")
endif()
