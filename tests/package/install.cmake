# Installs a build into an empty prefix, and runs the host there.
file(REMOVE_RECURSE ${prefix})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${build} --config ${config} --prefix ${prefix}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${emulator} ${host} plugins --app-dir ${prefix} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${emulator} ${host} run --app-dir ${prefix} COMMAND_ERROR_IS_FATAL ANY)
