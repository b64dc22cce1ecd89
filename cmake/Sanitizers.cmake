# EPG_SANITIZE: a comma-separated list for -fsanitize, empty for none.
set(EPG_SANITIZE "" CACHE STRING "Sanitizers to build with, such as address,undefined or thread")

if(EPG_SANITIZE)
    add_compile_options(-fsanitize=${EPG_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${EPG_SANITIZE})
    if(EPG_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-Wno-error=array-bounds)  # g++ 12 warns of members of strings, wrongly
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        get_directory_property(options LINK_OPTIONS)
        list(REMOVE_ITEM options "-Wl,-z,defs")  # clang leaves the run-time's symbols to the program
        set_directory_properties(PROPERTIES LINK_OPTIONS "${options}")
    endif()
endif()
