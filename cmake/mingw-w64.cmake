# The toolchain of the preset windows: Debian's g++ of mingw-w64, and what scripts/windows-sysroot built with it. Programs
# run in Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(target x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${target}-gcc-posix)
set(CMAKE_CXX_COMPILER ${target}-g++-posix)
set(CMAKE_RC_COMPILER ${target}-windres)

# Nothing of the machine that builds is found, except programs.
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH project)
set(CMAKE_FIND_ROOT_PATH "${project}/build/windows-sysroot" /usr/${target})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${project}/build/windows-sysroot/lib/pkgconfig")

# The libraries of the compiler are inside, so that a program needs those of the system alone.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)

set(CMAKE_CROSSCOMPILING_EMULATOR "${project}/scripts/wine")
