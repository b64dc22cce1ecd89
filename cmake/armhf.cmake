# 32-bit ARM with hardware floating point, as on the sets. Libraries and headers come from the sysroot that
# scripts/armhf-sysroot makes; the plug-in's objects alone (EPG_PLUGIN_ONLY) do without.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# Handed on to the small projects by which CMake tries the compiler.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES EPG_PLUGIN_ONLY EPG_ARMHF_SYSROOT)
set(EPG_ARMHF_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/armhf-sysroot CACHE PATH "What scripts/armhf-sysroot made")
if(NOT EPG_PLUGIN_ONLY)
    get_filename_component(sysroot "${EPG_ARMHF_SYSROOT}" ABSOLUTE)
    if(NOT EXISTS "${sysroot}/packages")
        message(FATAL_ERROR "${sysroot} is not there: scripts/armhf-sysroot makes it")
    endif()
    set(CMAKE_SYSROOT ${sysroot})
    set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
    set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
    set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
    # What is built is run by qemu: the tests, and epghost when it prints its manual.
    set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${sysroot})
    # pkg-config knows no sysroot by itself.
    set(ENV{PKG_CONFIG_LIBDIR}
        ${sysroot}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/pkgconfig:${sysroot}/usr/share/pkgconfig)
    set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})
    set(ENV{PKG_CONFIG_PATH} "")
endif()

# Times beyond 2038 on a system of 32 bits.
add_compile_definitions(_TIME_BITS=64 _FILE_OFFSET_BITS=64)
