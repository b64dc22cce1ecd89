# Optimised builds are hardened where they are linked: programs that are loaded anywhere, nothing to write to once a
# file is linked, no code on the stack. They are what is installed and packaged, and they read what a network sends.
# tests/packaging/hardening reads it back from what was built.
if(EPG_SANITIZE)
    return()  # which are not for installing
endif()
include(CheckPIESupported)
check_pie_supported()  # CMAKE_POSITION_INDEPENDENT_CODE then makes programs that are loaded anywhere
add_link_options("$<$<CONFIG:RelWithDebInfo,Release>:LINKER:-z,relro,-z,now,-z,noexecstack>")
