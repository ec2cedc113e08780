# ovapp_add_plugin(<target> SOURCES <file>... [LINK <target>...] [OUTPUT_DIRECTORY <directory>])
#
# Adds a plug-in for ovapp: the file <target>.dll on every system, with hidden symbols and AUTOMOC,
# linked to ovapp::ovapp and the LINK targets. OUTPUT_DIRECTORY is the directory in which it is built.
function(ovapp_add_plugin target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT_DIRECTORY" "SOURCES;LINK")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR
            "ovapp_add_plugin(${target}): unexpected arguments: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT arg_SOURCES)
        message(FATAL_ERROR "ovapp_add_plugin(${target}): SOURCES is missing")
    endif()

    # AUTOMOC reads the version of Qt from properties of the target's directory, which are not set if
    # find_package was called elsewhere.
    get_target_property(qt ovapp::ovapp INTERFACE_QT_MAJOR_VERSION)
    find_package(Qt${qt} REQUIRED COMPONENTS Core)
    if(NOT TARGET Qt${qt}::moc)
        message(FATAL_ERROR "ovapp_add_plugin(${target}): the moc of Qt ${qt} was not found")
    endif()
    string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" version ${Qt${qt}_VERSION})
    set_directory_properties(PROPERTIES
        Qt${qt}Core_VERSION_MAJOR ${CMAKE_MATCH_1}
        Qt${qt}Core_VERSION_MINOR ${CMAKE_MATCH_2})

    add_library(${target} MODULE ${arg_SOURCES})
    set_target_properties(${target} PROPERTIES
        PREFIX ""
        SUFFIX .dll
        DEBUG_POSTFIX ""
        AUTOMOC ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    if(arg_OUTPUT_DIRECTORY)
        set_target_properties(${target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${arg_OUTPUT_DIRECTORY})
    endif()
    target_compile_features(${target} PRIVATE cxx_std_17)
    target_link_libraries(${target} PRIVATE ovapp::ovapp ${arg_LINK})
endfunction()
