# Builds for 64-bit Windows with Debian's mingw-w64. CMAKE_PREFIX_PATH must contain the directory of
# Qt for Windows.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

# The variant of the compiler that supports std::thread.
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Strips the symbols that only debuggers need, which are most of a file's size.
foreach(kind EXE MODULE SHARED)
    set(CMAKE_${kind}_LINKER_FLAGS_RELEASE_INIT -s)
endforeach()

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

cmake_path(SET CMAKE_CROSSCOMPILING_EMULATOR NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine)
