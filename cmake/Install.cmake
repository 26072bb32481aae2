# The reference of the public headers, generated with doxygen.
set(PUBLIC_HEADERS module/SPM.h module/IScmSPM.h listener/SPM_listener.h cap/CAPException.h cap/CAPLoggingHandler.h
    cap/ICAPLoggingListener.h cap/ICAPLoggingMessage.h cap/ICAPLoggingSource.h)
list(TRANSFORM PUBLIC_HEADERS REPLACE "(.+)" "\"${PROJECT_SOURCE_DIR}/\\1\"")
list(JOIN PUBLIC_HEADERS " " PUBLIC_HEADERS)
configure_file(docs/Doxyfile.in Doxyfile @ONLY)

# The installation has two components. "kit" contains everything that a host developer needs. "simulator" contains the
# simulated SDK library, with copies of the module and the listener library beside it, ready to be loaded, and the
# recorder. Both stand-ins have folders of their own: beside the real module, they could be mistaken for the vendor's
# library.
include(CMakePackageConfigHelpers)

set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/${PROJECT_NAME})
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})
if(WIN32)
    set(readme_dir .)
    set(not_here PATTERN *.config EXCLUDE) # Mono's names of the libraries on Linux
    set(doc_dir docs)
    set(examples_dir examples)
    set(simulator_dir simulator)
    set(recorder_dir recorder)
else()
    set(readme_dir ${CMAKE_INSTALL_DOCDIR})
    set(doc_dir ${CMAKE_INSTALL_DOCDIR}/docs)
    set(examples_dir ${CMAKE_INSTALL_DOCDIR}/examples)
    set(simulator_dir ${SPM_MODULE_FOLDER}/simulator)
    set(recorder_dir ${SPM_MODULE_FOLDER}/recorder)
    file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    string(REGEX REPLACE "/$" "" prefix_from_pc ${prefix_from_pc})
    configure_file(cmake/spm_i1pro3.pc.in spm_i1pro3.pc @ONLY)
    find_program(SPM_HELP2MAN help2man)
    if(SPM_HELP2MAN AND TARGET spm)
        # A page for the program and one for each command. The program has a relative path, because help2man passes it
        # to a shell, where a blank would end it.
        file(RELATIVE_PATH spm_program ${PROJECT_BINARY_DIR} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/spm)
        foreach(page spm spm-doctor spm-measure)
            string(REGEX REPLACE "^spm-?" "" command ${page})
            add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/${page}.1
                COMMAND ${SPM_HELP2MAN} --no-info "--help-option=${command} --help"
                    --name "measure colour charts, and check installations" --output ${page}.1 ${spm_program}
                WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
                DEPENDS spm VERBATIM)
            list(APPEND manual ${PROJECT_BINARY_DIR}/${page}.1)
        endforeach()
        add_custom_target(manual ALL DEPENDS ${manual})
        install(FILES ${manual} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT kit)
    endif()
    install(FILES ${PROJECT_BINARY_DIR}/spm_i1pro3.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT kit)
endif()

# Installs a stripped program or library. The component "debug" adds its debug information where debuggers look for it.
install(CODE "set(CMAKE_INSTALL_DO_STRIP ON)" ALL_COMPONENTS)
function(spm_install component folder target)
    install(TARGETS ${target} COMPONENT ${component}
        RUNTIME DESTINATION ${folder}
        LIBRARY DESTINATION ${folder})
    if(NOT WIN32)
        install(CODE "execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND
            \"${PROJECT_SOURCE_DIR}/cmake/install-debug-file\" \"$<TARGET_FILE:${target}>\"
            \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}\")"
            COMPONENT debug EXCLUDE_FROM_ALL)
    endif()
endfunction()

foreach(library spm_i1pro3 spm_i1pro3_listener)
    spm_install(kit ${SPM_MODULE_FOLDER} ${library})
    if(NOT SPM_MODULE_ONLY)
        spm_install(simulator ${simulator_dir} ${library})
    endif()
    if(WIN32)
        install(FILES $<TARGET_LINKER_FILE:${library}> DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT kit)
    endif()
    if(MINGW AND NOT SPM_MODULE_ONLY)
        spm_add_visual_cpp_library(${library})
    endif()
endforeach()
if(NOT SPM_MODULE_ONLY)
    spm_install(kit ${CMAKE_INSTALL_BINDIR} spm)
    spm_install(simulator ${simulator_dir} i1Pro364)
    spm_install(simulator ${recorder_dir} recorder)
endif()
install(FILES module/SPM.h module/IScmSPM.h listener/SPM_listener.h DESTINATION ${header_dir} COMPONENT kit)
install(DIRECTORY cap DESTINATION ${header_dir} COMPONENT kit FILES_MATCHING
    PATTERN CAPException.h
    PATTERN CAPLoggingHandler.h
    PATTERN "ICAPLogging*.h")
install(FILES docs/kit.md DESTINATION ${readme_dir} RENAME README.md COMPONENT kit)
install(FILES CHANGELOG.md DESTINATION ${readme_dir} COMPONENT kit)
install(FILES docs/first-contact.md docs/host-guide.md docs/report.png docs/settings.md docs/spm.md docs/windows.md
    DESTINATION ${doc_dir} COMPONENT kit)
install(DIRECTORY examples/ DESTINATION ${examples_dir} COMPONENT kit
    PATTERN simulator EXCLUDE
    PATTERN __pycache__ EXCLUDE
    ${not_here})

configure_package_config_file(cmake/spm_i1pro3-config.cmake.in ${PROJECT_BINARY_DIR}/spm_i1pro3-config.cmake
    INSTALL_DESTINATION ${package_dir}
    PATH_VARS header_dir SPM_MODULE_FOLDER simulator_dir CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/spm_i1pro3-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/spm_i1pro3-config.cmake ${PROJECT_BINARY_DIR}/spm_i1pro3-config-version.cmake
    DESTINATION ${package_dir} COMPONENT kit)

if(NOT SPM_MODULE_ONLY)
    install(FILES simulator/I1PRO3_Simulator.h DESTINATION ${header_dir} COMPONENT simulator)
    install(FILES docs/simulator.md DESTINATION ${doc_dir} COMPONENT simulator)
    install(DIRECTORY examples/simulator DESTINATION ${examples_dir} COMPONENT simulator)
endif()

if(WIN32)
    # The licences of the libraries that are linked in, from their Debian packages.
    set(documents /usr/share/doc)
    set(licences_of libcli11-dev:CLI11 libfmt-dev:fmt gcc-mingw-w64-x86-64-posix-runtime:gcc
        libkainjow-mustache-dev:Mustache mingw-w64-x86-64-dev:mingw-w64 nlohmann-json3-dev:nlohmann-json)
    foreach(licence ${licences_of})
        string(REPLACE ":" ";" licence ${licence})
        list(GET licence 0 debian_package)
        list(GET licence 1 name)
        install(FILES ${documents}/${debian_package}/copyright DESTINATION licenses RENAME ${name}.txt COMPONENT kit)
    endforeach()
    install(FILES /usr/share/common-licenses/GPL-3 DESTINATION licenses RENAME GPL-3.txt COMPONENT kit)

    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-win64)
    set(CPACK_VERBATIM_VARIABLES ON)
    include(CPack)
endif()
