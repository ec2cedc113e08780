# Functions for the targets of this tree. All libraries have the same warnings, exports and install
# rules.
include(GenerateExportHeader)

# ovapp_set_warnings(<target>): enables the compiler warnings of this tree.
function(ovapp_set_warnings target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /utf-8)
    else()
        # A class with a weak virtual table has a copy of the table in every file that uses the class.
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
            $<$<CXX_COMPILER_ID:Clang>:-Wweak-vtables>)
    endif()
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS)
endfunction()

# ovapp_add_library(<target> HEADERS <header>... SOURCES <file>... [LINK <target>...])
#
# Adds a shared library that links Qt Core, with the generated export header <target>_export.h.
# HEADERS are the public headers, relative to the current source directory. Users include them by the
# same paths.
function(ovapp_add_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS;SOURCES;LINK")
    set(generated ${CMAKE_CURRENT_BINARY_DIR}/generated)

    add_library(${target} SHARED)
    add_library(ovapp::${target} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        OUTPUT_NAME ${target}${ovapp_qt_suffix}
        INSTALL_RPATH "$ORIGIN"
        INTERFACE_QT_MAJOR_VERSION ${QT_MAJOR_VERSION}
        COMPATIBLE_INTERFACE_STRING QT_MAJOR_VERSION)
    target_compile_features(${target} PUBLIC cxx_std_17)
    if(WIN32)
        set_property(TARGET ${target} PROPERTY PREFIX "")
    endif()
    ovapp_set_warnings(${target})
    # The exported symbols depend neither on the build type nor on the compiler.
    if(UNIX AND NOT APPLE)
        set(exports ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/exports.map)
        target_link_options(${target} PRIVATE LINKER:--version-script=${exports})
        set_property(TARGET ${target} PROPERTY LINK_DEPENDS ${exports})
    endif()
    generate_export_header(${target}
        EXPORT_FILE_NAME ${generated}/${target}_export.h)

    target_sources(${target}
        PRIVATE ${arg_SOURCES}
        PUBLIC
            FILE_SET HEADERS
                BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR}
                FILES ${arg_HEADERS}
            FILE_SET export_header TYPE HEADERS
                BASE_DIRS ${generated}
                FILES ${generated}/${target}_export.h)
    target_link_libraries(${target} PUBLIC Qt${QT_MAJOR_VERSION}::Core ${arg_LINK})

    if(OVAPP_INSTALL)
        install(TARGETS ${target} EXPORT ovappTargets
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
                NAMELINK_COMPONENT development
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
            FILE_SET HEADERS
                DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ovapp${ovapp_qt_suffix}
                COMPONENT development
            FILE_SET export_header
                DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ovapp${ovapp_qt_suffix}
                COMPONENT development)
    endif()
endfunction()
