# Builds the tree twice, in folders whose names differ in length, and compares the installed files.
# Unlike the other tests, it uses a multi-configuration generator, optimisation and unity builds. The
# debug information makes the check strict: without it, no file contains a path of the sources.
cmake_policy(VERSION 3.25)
set(parts app cmake events host netdiag platform plugins registries samples system CMakeLists.txt)
list(TRANSFORM parts PREPEND ${source}/)
set(one ${dir}/a)
set(other ${dir}/b-of-another-length)
foreach(folder ${one} ${other})
    file(REMOVE_RECURSE ${folder})
    file(COPY ${parts} DESTINATION ${folder}/source)
    execute_process(COMMAND ${CMAKE_COMMAND} -S ${folder}/source -B ${folder}/build
            -G "Ninja Multi-Config" -D CMAKE_CONFIGURATION_TYPES=RelWithDebInfo -D CMAKE_UNITY_BUILD=ON
            -D CMAKE_UNITY_BUILD_BATCH_SIZE=0
            -D CMAKE_CXX_COMPILER=${compiler} -D QT_MAJOR_VERSION=${qt} -D Qt${qt}_DIR=${qt_dir}
            -D OVAPP_BUILD_TESTS=OFF -D CMAKE_COMPILE_WARNING_AS_ERROR=ON
        COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${CMAKE_COMMAND} --build ${folder}/build COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${CMAKE_COMMAND} --install ${folder}/build --prefix ${folder}/prefix
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()

file(GLOB_RECURSE files RELATIVE ${one}/prefix ${one}/prefix/*)
foreach(file ${files})
    file(SHA256 ${one}/prefix/${file} hash)
    file(SHA256 ${other}/prefix/${file} other_hash)
    if(NOT hash STREQUAL other_hash)
        message(SEND_ERROR "depends on the build directory: ${file}")
    endif()
endforeach()

# The host finds the samples in the build tree.
execute_process(COMMAND ${other}/build/RelWithDebInfo/${host} run --app-dir ${dir}
    OUTPUT_VARIABLE session ECHO_OUTPUT_VARIABLE COMMAND_ERROR_IS_FATAL ANY)
if(NOT session MATCHES "tcp-trigger\\.dll: accepted")
    message(FATAL_ERROR "the host did not find the sample plug-ins")
endif()
