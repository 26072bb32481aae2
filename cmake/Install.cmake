# The reference of the public headers, made by doxygen.
set(PUBLIC_HEADERS module/SPM.h module/IScmSPM.h listener/SPM_listener.h cap/CAPException.h cap/CAPLoggingHandler.h
    cap/ICAPLoggingListener.h cap/ICAPLoggingMessage.h cap/ICAPLoggingSource.h)
list(TRANSFORM PUBLIC_HEADERS REPLACE "(.+)" "\"${PROJECT_SOURCE_DIR}/\\1\"")
list(JOIN PUBLIC_HEADERS " " PUBLIC_HEADERS)
configure_file(docs/Doxyfile.in Doxyfile @ONLY)

# What is installed, in two components. "kit" has all that a host's developer needs; "simulator" has the simulated SDK
# library with copies of the module and the listener library beside it, ready to be loaded, and the recorder. They have
# folders of their own: beside the module that measures they could be taken for the vendor's library.
include(CMakePackageConfigHelpers)

set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/${PROJECT_NAME})
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})
if(WIN32)
    set(doc_dir docs)
    set(examples_dir examples)
    set(simulator_dir simulator)
    set(recorder_dir recorder)
    install(FILES docs/windows.md DESTINATION . RENAME README.md COMPONENT kit)
else()
    set(doc_dir ${CMAKE_INSTALL_DOCDIR})
    set(examples_dir ${CMAKE_INSTALL_DOCDIR}/examples)
    set(simulator_dir ${SPM_MODULE_FOLDER}/simulator)
    set(recorder_dir ${SPM_MODULE_FOLDER}/recorder)
    file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    configure_file(cmake/spm_i1pro3.pc.in spm_i1pro3.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/spm_i1pro3.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT kit)
endif()

install(TARGETS spm_i1pro3 spm_i1pro3_listener COMPONENT kit
    RUNTIME DESTINATION ${SPM_MODULE_FOLDER}
    LIBRARY DESTINATION ${SPM_MODULE_FOLDER}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS spm RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT kit)
install(FILES module/SPM.h module/IScmSPM.h listener/SPM_listener.h DESTINATION ${header_dir} COMPONENT kit)
install(DIRECTORY cap DESTINATION ${header_dir} COMPONENT kit FILES_MATCHING
    PATTERN CAPException.h
    PATTERN CAPLoggingHandler.h
    PATTERN "ICAPLogging*.h")
install(FILES docs/host-guide.md docs/report.png docs/spm.md DESTINATION ${doc_dir} COMPONENT kit)
install(DIRECTORY examples/ DESTINATION ${examples_dir} COMPONENT kit
    PATTERN simulator EXCLUDE
    PATTERN __pycache__ EXCLUDE)

configure_package_config_file(cmake/spm_i1pro3-config.cmake.in ${PROJECT_BINARY_DIR}/spm_i1pro3-config.cmake
    INSTALL_DESTINATION ${package_dir}
    PATH_VARS header_dir SPM_MODULE_FOLDER simulator_dir CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/spm_i1pro3-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/spm_i1pro3-config.cmake ${PROJECT_BINARY_DIR}/spm_i1pro3-config-version.cmake
    DESTINATION ${package_dir} COMPONENT kit)

foreach(kind RUNTIME LIBRARY)
    list(APPEND simulator_files ${kind} DESTINATION ${simulator_dir})
    list(APPEND recorder_files ${kind} DESTINATION ${recorder_dir})
endforeach()
install(TARGETS i1Pro364 COMPONENT simulator ${simulator_files})
install(TARGETS recorder COMPONENT simulator ${recorder_files})
install(PROGRAMS $<TARGET_FILE:spm_i1pro3> $<TARGET_FILE:spm_i1pro3_listener> DESTINATION ${simulator_dir}
    COMPONENT simulator)
install(FILES docs/simulator.md DESTINATION ${doc_dir} COMPONENT simulator)
install(DIRECTORY examples/simulator DESTINATION ${examples_dir} COMPONENT simulator)

if(WIN32)
    # The licences of what is linked in, as Debian tells them.
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
