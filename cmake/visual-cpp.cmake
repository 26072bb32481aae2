# Compiles for Visual C++'s binary interface with clang and lld, which accept its options and define its macros. There
# is no C runtime: the entry point of a program is its function `host`.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER clang-cl-14)
set(CMAKE_CXX_COMPILER clang-cl-14)
set(CMAKE_C_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_CXX_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_LINKER lld-link)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_C_FLAGS "/W4 /WX /GS-")
set(CMAKE_CXX_FLAGS "/W4 /WX /GS-")
set(CMAKE_C_STANDARD_LIBRARIES "")
set(CMAKE_CXX_STANDARD_LIBRARIES "")
set(CMAKE_EXE_LINKER_FLAGS "/entry:host /nodefaultlib /manifest:no")
