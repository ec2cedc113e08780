# ovapp_add_plugin(<target> SOURCES <file>... [LINK <target>...] [OUTPUT_DIRECTORY <directory>])
#
# Adds a plug-in for ovapp: the file <target>.dll on every system, with hidden symbols and AUTOMOC,
# linked to ovapp::ovapp and the LINK targets. OUTPUT_DIRECTORY is the directory in which it is built. The
# file contains the version of ovapp, so that the loader refuses it if it is built for another major version.
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
    # In the file's Qt metadata, where the loader looks for it.
    get_target_property(version ovapp::ovapp OVAPP_VERSION)
    set_property(TARGET ${target} APPEND PROPERTY AUTOMOC_MOC_OPTIONS -Movapp=${version})
    if(arg_OUTPUT_DIRECTORY)
        set_target_properties(${target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${arg_OUTPUT_DIRECTORY})
    endif()
    target_compile_features(${target} PRIVATE cxx_std_17)
    target_link_libraries(${target} PRIVATE ovapp::ovapp ${arg_LINK})
endfunction()

# ovapp_add_plugin_test(<target> [BOARD <type>])
#
# Adds the test <target>-profile, which fails if ovapp-host cannot use the plug-in: it loads, starts, stops
# and unloads the plug-in in a process of its own. BOARD is the type of the control board, by default 1.
function(ovapp_add_plugin_test target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "BOARD" "")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR
            "ovapp_add_plugin_test(${target}): unexpected arguments: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT TARGET ovapp::host)
        get_target_property(qt ovapp::ovapp INTERFACE_QT_MAJOR_VERSION)
        string(REPLACE "5" "" suffix "-qt${qt}")
        string(REGEX REPLACE "-qt$" "" suffix "${suffix}")
        message(FATAL_ERROR "ovapp_add_plugin_test(${target}): ovapp-host was not found; on Debian, install \
ovapp-host${suffix}")
    endif()
    if(NOT DEFINED arg_BOARD)
        set(arg_BOARD 1)
    endif()
    # The settings of the test are not those of the user.
    set(app_dir ${CMAKE_CURRENT_BINARY_DIR}/${target}-profile)
    file(MAKE_DIRECTORY ${app_dir})
    add_test(NAME ${target}-profile
        COMMAND ovapp::host plugins --profile --board ${arg_BOARD} --app-dir ${app_dir}
            $<TARGET_FILE:${target}>)
endfunction()
