# Packs a build, unpacks it into an empty directory, and runs the host there.
cmake_policy(VERSION 3.25)
file(REMOVE_RECURSE ${dir})
get_filename_component(cmake_dir ${CMAKE_COMMAND} DIRECTORY)
execute_process(COMMAND ${cmake_dir}/cpack -G ZIP -C ${config} --config ${build}/CPackConfig.cmake
        -B ${dir}/packed
    COMMAND_ERROR_IS_FATAL ANY)
file(GLOB archive ${dir}/packed/*.zip)
file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${dir}/unpacked)
file(GLOB folder ${dir}/unpacked/*)
list(LENGTH folder count)
if(NOT count EQUAL 1)
    message(FATAL_ERROR "expected one top-level folder, got: ${folder}")
endif()
file(GLOB_RECURSE files RELATIVE ${folder} ${folder}/*)
if(files MATCHES "\\.(h|a|cmake)(;|$)")
    message(FATAL_ERROR "the archive contains development files: ${CMAKE_MATCH_0}")
endif()

execute_process(COMMAND ${emulator} ${folder}/${host} plugins --app-dir .
    WORKING_DIRECTORY ${folder} OUTPUT_VARIABLE plugins ECHO_OUTPUT_VARIABLE
    COMMAND_ERROR_IS_FATAL ANY)
if(NOT plugins MATCHES "tcp-trigger\\.dll")
    message(FATAL_ERROR "the sample plug-ins are missing")
endif()
execute_process(COMMAND ${emulator} ${folder}/${host} run --app-dir .
    WORKING_DIRECTORY ${folder} COMMAND_ERROR_IS_FATAL ANY)
