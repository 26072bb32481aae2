# The target "lint": formatting and static analysis of all sources, each source again only when it or a header changed.
find_program(CLANG_FORMAT clang-format)
find_program(CLANG_TIDY clang-tidy)
if(NOT CLANG_FORMAT OR NOT CLANG_TIDY)
    return()
endif()

set(folders cap host i1pro3 module platform platform/posix simulator tests tests/boundary tests/host tests/support tests/unit)
list(TRANSFORM folders PREPEND ${PROJECT_SOURCE_DIR}/)
list(TRANSFORM folders APPEND /*.c OUTPUT_VARIABLE c_sources)
list(TRANSFORM folders APPEND /*.cpp OUTPUT_VARIABLE cpp_sources)
list(TRANSFORM folders APPEND /*.h OUTPUT_VARIABLE all_headers)
file(GLOB sources CONFIGURE_DEPENDS ${c_sources} ${cpp_sources})
file(GLOB headers CONFIGURE_DEPENDS ${all_headers})
set(rules ${PROJECT_SOURCE_DIR}/.clang-tidy ${PROJECT_SOURCE_DIR}/tests/.clang-tidy)

set(stamps)
foreach(source IN LISTS sources)
    file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR} ${source})
    string(REPLACE / _ name ${name})
    set(stamp ${PROJECT_BINARY_DIR}/lint/${name}.stamp)
    add_custom_command(OUTPUT ${stamp}
        COMMAND ${CLANG_TIDY} --quiet -p ${PROJECT_BINARY_DIR} ${source}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${source} ${headers} ${rules}
        COMMENT "Checking ${source}"
        VERBATIM)
    list(APPEND stamps ${stamp})
endforeach()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/lint)

add_custom_target(lint
    COMMAND ${CLANG_FORMAT} --dry-run -Werror ${sources} ${headers}
    DEPENDS ${stamps}
    VERBATIM)
