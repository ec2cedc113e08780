# Read by `cpack`. Install paths and run paths are fixed when a build is configured, so a build is either
# for Debian packages or for archives.
if(CPACK_GENERATOR STREQUAL "DEB" AND NOT CPACK_DEB_COMPONENT_INSTALL)
    message(FATAL_ERROR "This build is configured for an archive; for Debian packages, run "
        "`cmake --workflow --preset debian`")
elseif(CPACK_DEB_COMPONENT_INSTALL AND NOT CPACK_GENERATOR STREQUAL "DEB")
    message(FATAL_ERROR "This build is configured for Debian packages; for an archive, use "
        "another preset")
endif()
