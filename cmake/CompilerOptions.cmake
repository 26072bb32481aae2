# What every part is compiled and linked with.
if(MSVC)
    add_compile_options(/W4 /permissive- /utf-8)
else()
    add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
endif()
set(CMAKE_COMPILE_WARNING_AS_ERROR ${SPM_WARNINGS_AS_ERRORS})

if(SPM_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(NOT WIN32)
    add_link_options(LINKER:-z,defs)
endif()

if(MINGW)
    # Nothing of the compiler's own as a library beside the program, and the same bytes from the same sources.
    add_link_options(-static -s LINKER:--no-insert-timestamp)
elseif(NOT WIN32)
    # Calls as on Windows: within a library direct, or not at all; to another library without a detour.
    add_compile_options(-fno-semantic-interposition -fno-plt)
    add_link_options(LINKER:--enable-new-dtags)
    # What is bound is bound at load, and read-only from then on; no stack is executable.
    add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
