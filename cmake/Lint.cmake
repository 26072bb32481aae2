# The target "lint" checks the format of all sources and runs static analysis on those of this build. A source is
# analysed again only when it or any header has changed. The Windows build analyses only the sources that the native
# build doesn't compile. Benchmarks, examples and the host for Visual C++ belong to other builds and are not analysed.
find_program(CLANG_FORMAT clang-format)
find_program(CLANG_TIDY clang-tidy)
if(NOT CLANG_FORMAT OR NOT CLANG_TIDY)
    return()
endif()

set(folders cap common i1pro3 listener module platform platform/posix platform/windows simulator spm spm/colour spm/doctor
    spm/formats spm/measure tests tests/boundary tests/posix tests/spm tests/support tests/unit tests/windows)
list(TRANSFORM folders PREPEND ${PROJECT_SOURCE_DIR}/)
list(TRANSFORM folders APPEND /*.c OUTPUT_VARIABLE c_sources)
list(TRANSFORM folders APPEND /*.cpp OUTPUT_VARIABLE cpp_sources)
list(TRANSFORM folders APPEND /*.h OUTPUT_VARIABLE all_headers)
file(GLOB sources CONFIGURE_DEPENDS ${c_sources} ${cpp_sources})
file(GLOB headers CONFIGURE_DEPENDS ${all_headers})
file(GLOB only_formatted CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/bench/*.cpp ${PROJECT_SOURCE_DIR}/bench/*.h
    ${PROJECT_SOURCE_DIR}/examples/*/*.c ${PROJECT_SOURCE_DIR}/examples/*/*.cpp
    ${PROJECT_SOURCE_DIR}/examples/*.h ${PROJECT_SOURCE_DIR}/examples/*/*.h
    ${PROJECT_SOURCE_DIR}/tests/windows/visual_cpp/host.c)
set(rules ${PROJECT_SOURCE_DIR}/.clang-tidy ${PROJECT_SOURCE_DIR}/tests/.clang-tidy)

set(only_windows "Windows\\.cpp$|/(platform|tests)/windows/[^/]*$")
set(analysed ${sources})
set(target_arguments)
if(WIN32)
    list(FILTER analysed INCLUDE REGEX ${only_windows})
    # The cross compiler's headers, except for its intrinsics: clang has its own.
    set(system_headers ${CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES})
    list(FILTER system_headers EXCLUDE REGEX "/include(-fixed)?$")
    list(APPEND system_headers /usr/x86_64-w64-mingw32/include)
    list(TRANSFORM system_headers PREPEND --extra-arg=-isystem)
    set(target_arguments --extra-arg-before=--target=x86_64-w64-mingw32 ${system_headers})
else()
    list(FILTER analysed EXCLUDE REGEX ${only_windows})
endif()

set(stamps)
foreach(source IN LISTS analysed)
    file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR} ${source})
    string(REPLACE / _ name ${name})
    set(stamp ${PROJECT_BINARY_DIR}/lint/${name}.stamp)
    add_custom_command(OUTPUT ${stamp}
        COMMAND ${CLANG_TIDY} --quiet -p ${PROJECT_BINARY_DIR} ${target_arguments} ${source}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${source} ${headers} ${rules}
        COMMENT "Checking ${source}"
        VERBATIM)
    list(APPEND stamps ${stamp})
endforeach()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/lint)

add_custom_target(lint
    COMMAND ${CLANG_FORMAT} --dry-run -Werror ${sources} ${headers} ${only_formatted}
    DEPENDS ${stamps}
    VERBATIM)
