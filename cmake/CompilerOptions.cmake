# Compiler and linker options of all targets.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
set(CMAKE_COMPILE_WARNING_AS_ERROR ${SPM_WARNINGS_AS_ERRORS})

if(SPM_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(NOT WIN32)
    add_link_options(LINKER:-z,defs)
endif()

if(MINGW)
    # Link the compiler's runtime libraries statically, and make the build reproducible.
    add_link_options(-static -s LINKER:--no-insert-timestamp)
elseif(NOT WIN32)
    # As on Windows, calls within a library are direct or inlined, and calls to other libraries skip the PLT.
    add_compile_options(-fno-semantic-interposition -fno-plt)
    # RUNPATH rather than RPATH, so that LD_LIBRARY_PATH takes precedence.
    add_link_options(LINKER:--enable-new-dtags)
    # Resolve all symbols at load time and make the tables read-only afterwards; no stack is executable.
    add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
