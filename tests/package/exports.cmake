# Checks that a library exports every class of a list, and apart from them only functions of the
# namespace System. GCC and Clang mangle names in the same way; import libraries add a prefix.
cmake_policy(VERSION 3.25)
if(library MATCHES "\\.so")
    set(options --dynamic)
    set(prefix " [A-Za-z] ")
    # Any member except fields, whose names begin with an underscore.
    set(member "([^0-9]|[0-9]+[^0-9_]|$)")
else()
    set(options "")
    set(prefix "__imp_")
    set(member "")
endif()
execute_process(COMMAND ${nm} ${options} --extern-only --defined-only ${library}
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "${prefix}[^ \n]+" symbols "${listing}")
list(TRANSFORM symbols REPLACE "^${prefix}" "")

string(REPLACE "," ";" classes "${classes}")
set(namespaces "3App|4Core|3Doc|8Database|11FontLibrary")
list(FILTER symbols EXCLUDE REGEX "^_ZN6System[1-9]")
foreach(class ${classes})
    string(LENGTH ${class} length)
    # A member, virtual table or type information of the class, in one of the namespaces.
    set(pattern "^_Z(T[ISV]|Th[n0-9]+_)?(NK?)?(${namespaces})?${length}${class}${member}")
    list(LENGTH symbols before)
    list(FILTER symbols EXCLUDE REGEX ${pattern})
    list(LENGTH symbols after)
    # ELF libraries export no symbols of a class that is entirely inline.
    if(before EQUAL after AND prefix STREQUAL "__imp_")
        message(SEND_ERROR "not exported: ${class}")
    endif()
endforeach()
if(symbols)
    message(SEND_ERROR "exported, but not part of a public class: ${symbols}")
endif()
