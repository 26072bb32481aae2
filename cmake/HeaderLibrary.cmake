# Adds a target for a header-only library. The include path has only the library's folder, through a link in the build
# tree: the folder's parent, such as /usr/include, may contain the build machine's own headers, which must not be found
# when cross-compiling.
function(spm_add_header_library target folder header)
    find_path(${target}_HEADERS ${folder}/${header} NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include/${target})
    file(CREATE_LINK ${${target}_HEADERS}/${folder} ${PROJECT_BINARY_DIR}/include/${target}/${folder}
        COPY_ON_ERROR SYMBOLIC)
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/include/${target})
endfunction()
