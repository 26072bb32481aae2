# Makes an instrument's module, the library spm_NAME, and NAME_objects, its object files for tests of the classes.
# NAME: also the target of the instrument's own object files
# SDK: the library to link with, which has the name and the functions of the SDK library
function(spm_add_instrument name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESCRIPTION;SDK" "SOURCES")
    add_library(${name} OBJECT ${arg_SOURCES})
    add_library(${name}_objects INTERFACE)
    target_link_libraries(${name}_objects INTERFACE
        ${name} $<TARGET_OBJECTS:${name}>
        module $<TARGET_OBJECTS:module>
        cap $<TARGET_OBJECTS:cap>
        platform)

    set(library spm_${name})
    add_library(${library} SHARED)
    if(NOT WIN32)
        target_sources(${library} PRIVATE
            ${PROJECT_SOURCE_DIR}/module/VersionResource.cpp
            ${PROJECT_SOURCE_DIR}/platform/posix/Attach.cpp)
    endif()
    set_target_properties(${library} PROPERTIES PREFIX "" OUTPUT_NAME ${library} LINKER_LANGUAGE CXX)
    spm_add_version(${library} ${arg_DESCRIPTION} "Spectrophotometer modules")
    target_link_libraries(${library} PRIVATE ${name}_objects ${arg_SDK})
    spm_export_only(${library} ${PROJECT_SOURCE_DIR}/module/exports.txt)
endfunction()
