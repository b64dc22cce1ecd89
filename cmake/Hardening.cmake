# Optimised builds are hardened: they are what is installed and packaged, and they read what a network sends.
# tests/packaging/hardening reads the flags back from what was built.
if(EPG_SANITIZE)
    return()  # which look at more, and want the C library's functions as they are
endif()
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()  # CMAKE_POSITION_INDEPENDENT_CODE then makes programs that are loaded anywhere

set(hardened "$<CONFIG:RelWithDebInfo,Release>")
set(flags -fstack-protector-strong -fstack-clash-protection)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i[3-6]86")
    list(APPEND flags -fcf-protection)
endif()
foreach(flag IN LISTS flags)
    string(MAKE_C_IDENTIFIER "EPG_TAKES${flag}" takes)
    check_cxx_compiler_flag("${flag} -Werror" ${takes})
    if(${takes})
        add_compile_options("$<${hardened}:${flag}>")
    endif()
endforeach()
# Some compilers define it by themselves. One option, since CMake leaves out a second -U.
add_compile_options("$<${hardened}:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3>")
add_link_options("$<${hardened}:LINKER:-z,relro,-z,now,-z,noexecstack>")
