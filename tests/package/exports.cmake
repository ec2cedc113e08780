# Whether a library exports every class of a list, and nothing else but functions of the namespace
# System. The names are as GCC and Clang mangle them; an import library has them behind a prefix.
cmake_policy(VERSION 3.25)
if(library MATCHES "\\.so")
    set(options --dynamic)
    set(prefix " [A-Za-z] ")
    # Anything but a field: their names begin with an underscore.
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
    # A member, virtual table or type information of the class, in the namespaces there are.
    set(pattern "^_Z(T[ISV]|Th[n0-9]+_)?(NK?)?(${namespaces})?${length}${class}${member}")
    list(LENGTH symbols before)
    list(FILTER symbols EXCLUDE REGEX ${pattern})
    list(LENGTH symbols after)
    # Of a class that is all inline, ELF needs nothing.
    if(before EQUAL after AND prefix STREQUAL "__imp_")
        message(SEND_ERROR "not exported: ${class}")
    endif()
endforeach()
if(symbols)
    message(SEND_ERROR "exported, but of no public class: ${symbols}")
endif()
