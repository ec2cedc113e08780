# Whether a library exports every class of a list, and nothing else. The names are as GCC and Clang
# mangle them; an import library has them behind a prefix.
cmake_policy(VERSION 3.25)
if(library MATCHES "\\.so")
    # Inline functions of others' exported classes are there too, as weak symbols.
    set(options --dynamic)
    set(prefix " [A-VX-Z] ")
else()
    set(options "")
    set(prefix "__imp_")
endif()
execute_process(COMMAND ${nm} ${options} --extern-only --defined-only ${library}
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "${prefix}[^ \n]+" symbols "${listing}")
list(TRANSFORM symbols REPLACE "^${prefix}" "")

string(REPLACE "," ";" classes ${classes})
foreach(class ${classes})
    string(LENGTH ${class} length)
    # A member, virtual table or type information of the class, in the namespaces there are.
    set(pattern "^_Z(T[ISV]|Th[n0-9]+_)?(NK?)?(3App|4Core)?${length}${class}")
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
