# The release archive for Windows. The simulated SDK library and the recorder have folders of their own: beside the
# module they could be taken for the vendor's.
install(TARGETS spm_i1pro3 RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
install(TARGETS spm RUNTIME DESTINATION bin)
install(TARGETS i1Pro364 RUNTIME DESTINATION simulator)
install(TARGETS recorder RUNTIME DESTINATION recorder)
install(FILES module/SPM.h DESTINATION include)
install(FILES docs/windows.md DESTINATION . RENAME README.md)
install(FILES docs/simulator.md DESTINATION docs)
install(DIRECTORY examples/simulator DESTINATION examples)

# The licences of what is linked in, as Debian tells them.
set(documents /usr/share/doc)
install(FILES ${documents}/libcli11-dev/copyright DESTINATION licenses RENAME CLI11.txt)
install(FILES ${documents}/libfmt-dev/copyright DESTINATION licenses RENAME fmt.txt)
install(FILES ${documents}/gcc-mingw-w64-x86-64-posix-runtime/copyright DESTINATION licenses RENAME gcc.txt)
install(FILES ${documents}/mingw-w64-x86-64-dev/copyright DESTINATION licenses RENAME mingw-w64.txt)
install(FILES ${documents}/nlohmann-json3-dev/copyright DESTINATION licenses RENAME nlohmann-json.txt)
install(FILES /usr/share/common-licenses/GPL-3 DESTINATION licenses RENAME GPL-3.txt)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-win64)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
