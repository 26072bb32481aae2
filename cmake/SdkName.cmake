# Gives a library the file name of the vendor's SDK library.
# folder: where it is built, relative to the folder of the programs; "." for that folder itself
function(spm_use_sdk_name target folder)
    set_target_properties(${target} PROPERTIES OUTPUT_NAME i1Pro364
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${folder}
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${folder}
        ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/${folder})
    if(WIN32)
        set_target_properties(${target} PROPERTIES PREFIX "")
    endif()
endfunction()
