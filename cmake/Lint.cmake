# The target "lint" checks the format of all sources and runs static analysis on those of this build; the Windows build
# analyses only the sources that a native build doesn't compile. In a unity build, which the presets "asan" and "windows"
# are, the headers are analysed once for all sources of a library. Benchmarks, examples and the host for Visual C++ belong
# to other builds and are not analysed. Both tools find and format other things in each release, so lint needs the one
# that the rules were written for.
set(lint_release 14)
foreach(tool clang-format run-clang-tidy clang-tidy)
    string(MAKE_C_IDENTIFIER ${tool} program)
    find_program(${program} NAMES ${tool}-${lint_release} ${tool})
endforeach()
set(versions)
foreach(program ${clang_format} ${clang_tidy})
    execute_process(COMMAND ${program} --version OUTPUT_VARIABLE version)
    string(APPEND versions ${version})
endforeach()
if(NOT versions MATCHES "format version ${lint_release}\\..* version ${lint_release}\\.")
    add_custom_target(lint
        COMMAND ${CMAKE_COMMAND} -E echo "Skipped: lint needs clang-format and clang-tidy ${lint_release}")
    return()
endif()

file(GLOB folders LIST_DIRECTORIES ON ${PROJECT_SOURCE_DIR}/*)
list(FILTER folders EXCLUDE REGEX "/build$")
list(TRANSFORM folders APPEND /*.c OUTPUT_VARIABLE c_sources)
list(TRANSFORM folders APPEND /*.cpp OUTPUT_VARIABLE cpp_sources)
list(TRANSFORM folders APPEND /*.h OUTPUT_VARIABLE headers)
file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${c_sources} ${cpp_sources})
file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${headers})

# The sources of a unity build are in the build folder, where clang-tidy doesn't find the rules for tests.
file(STRINGS ${PROJECT_SOURCE_DIR}/tests/.clang-tidy test_checks REGEX "^  -")
string(REPLACE ";" "" test_checks "${test_checks}")
string(REPLACE " " "" test_checks "${test_checks}")
set(analyse ${run_clang_tidy} -quiet -p ${PROJECT_BINARY_DIR} -clang-tidy-binary ${clang_tidy}
    -extra-arg=-Wno-unknown-warning-option)
set(checks -checks=-bugprone-suspicious-include)
set(code "^(?!.*(/tests/|/ChartData)).*$")
set(tests "^(?!.*googletest).*/tests/.*$")
if(WIN32)
    # The cross compiler's headers, except for its intrinsics: clang has its own.
    set(system_headers ${CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES})
    list(FILTER system_headers EXCLUDE REGEX "/include(-fixed)?$")
    list(APPEND system_headers /usr/x86_64-w64-mingw32/include)
    list(TRANSFORM system_headers PREPEND -extra-arg=-isystem)
    list(APPEND analyse -extra-arg-before=--target=x86_64-w64-mingw32 ${system_headers})

    set(windows_tests ${sources})
    list(FILTER windows_tests INCLUDE REGEX "Windows\\.cpp$|/(platform|tests)/windows/[^/]*$")
    set(windows_code ${windows_tests})
    list(FILTER windows_tests INCLUDE REGEX /tests/)
    list(REMOVE_ITEM windows_code ${windows_tests})
    foreach(kind code tests)
        add_library(windows_${kind} OBJECT EXCLUDE_FROM_ALL ${windows_${kind}}) # is only analysed
        target_link_libraries(windows_${kind} PRIVATE test_support)
        set(${kind} /windows_${kind}\\.dir/)
    endforeach()
endif()

set(stamp ${PROJECT_BINARY_DIR}/lint.stamp)
add_custom_command(OUTPUT ${stamp}
    COMMAND ${clang_format} --dry-run -Werror ${sources} ${headers}
    COMMAND ${analyse} ${checks} ${code}
    COMMAND ${analyse} ${checks},${test_checks} ${tests}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${sources} ${headers} ${PROJECT_SOURCE_DIR}/.clang-format ${PROJECT_SOURCE_DIR}/.clang-tidy
        ${PROJECT_SOURCE_DIR}/tests/.clang-tidy
    COMMENT "Checking format and code"
    VERBATIM)
add_custom_target(lint DEPENDS ${stamp})
