# On Windows, executables find DLLs in their own directory. The DLLs of Qt and of the compiler are
# copied to that directory, in the build tree and in the install prefix.

set(runtime_dlls $<TARGET_FILE:Qt${QT_MAJOR_VERSION}::Core>)
if(OVAPP_BUILD_HOST)
    # A sample plug-in uses Qt Network.
    find_package(Qt${QT_MAJOR_VERSION} REQUIRED COMPONENTS Network)
    list(APPEND runtime_dlls $<TARGET_FILE:Qt${QT_MAJOR_VERSION}::Network>)
endif()
if(MINGW)
    # The DLLs are in the compiler's library directories or next to the compiler.
    cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH compiler_dir)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/compiler-dlls)
    foreach(name libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE dll OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        if(NOT IS_ABSOLUTE ${dll})
            set(dll ${compiler_dir}/${name})
        endif()
        if(NOT EXISTS ${dll})
            message(FATAL_ERROR "${name} was not found in the directories of the compiler")
        endif()
        # Most of the size of some of them is debug information.
        set(stripped_dll ${PROJECT_BINARY_DIR}/compiler-dlls/${name})
        execute_process(COMMAND ${CMAKE_STRIP} -o ${stripped_dll} ${dll}
            COMMAND_ERROR_IS_FATAL ANY)
        list(APPEND runtime_dlls ${stripped_dll})
    endforeach()
endif()

set(test_dlls "")
if(OVAPP_BUILD_TESTS)
    find_package(Qt${QT_MAJOR_VERSION} REQUIRED COMPONENTS Test)
    set(test_dlls $<TARGET_FILE:Qt${QT_MAJOR_VERSION}::Test>)
endif()
add_custom_target(copy_dlls ALL
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different
        ${runtime_dlls} ${test_dlls} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    VERBATIM)

if(OVAPP_INSTALL)
    install(FILES ${runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
endif()
