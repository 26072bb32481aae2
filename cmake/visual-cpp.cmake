# Compiles as Visual C++ does, with clang and lld, which imitate its command line, binary interface and macros. There is
# no C runtime: a program begins with its function `host`.
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
