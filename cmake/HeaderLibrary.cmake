# Makes a target of a header-only library's folder. Only this folder becomes visible to the compiler, by a link in the
# build tree: beside it may lie the headers of another system than the one that is built for.
function(spm_add_header_library target folder header)
    find_path(${target}_HEADERS ${folder}/${header} NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include/${target})
    file(CREATE_LINK ${${target}_HEADERS}/${folder} ${PROJECT_BINARY_DIR}/include/${target}/${folder}
        COPY_ON_ERROR SYMBOLIC)
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/include/${target})
endfunction()
