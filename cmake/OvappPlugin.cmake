# ovapp_add_plugin(<target> SOURCES <file>... [LINK <target>...] [OUTPUT_DIRECTORY <directory>])
#
# A plug-in for ovapp: the file <target>.dll, so named on every system, with hidden symbols, linked
# to ovapp::ovapp and the LINK targets, its Q_OBJECT classes taken care of. OUTPUT_DIRECTORY is
# where the file is built, for a place of its own.
function(ovapp_add_plugin target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT_DIRECTORY" "SOURCES;LINK")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "ovapp_add_plugin(${target}): unknown: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT arg_SOURCES)
        message(FATAL_ERROR "ovapp_add_plugin(${target}): SOURCES is missing")
    endif()

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
