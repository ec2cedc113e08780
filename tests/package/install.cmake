# Installs a build into a prefix with nothing in it from before, and runs the host from there.
file(REMOVE_RECURSE ${prefix})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${build} --config ${config} --prefix ${prefix}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${emulator} ${host} plugins --app-dir ${prefix} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${emulator} ${host} run --app-dir ${prefix} COMMAND_ERROR_IS_FATAL ANY)
