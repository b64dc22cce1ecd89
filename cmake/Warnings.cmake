# Warnings of both compilers, as errors, for every target of the project.
add_compile_options(
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
    -Wcast-align -Wformat=2 -Wundef -Wunused -Wimplicit-fallthrough)
add_compile_options(-fvisibility=hidden -fvisibility-inlines-hidden)
add_link_options(-Wl,--as-needed -Wl,-z,defs)
