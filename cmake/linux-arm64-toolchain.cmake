# Builds programs for Linux on arm64 with Debian's clang 19 and lld, and the packages that
# script/arm64-root unpacks. LUMO_LLVM and LUMO_ARM64_ROOT replace the default paths. The programs
# load their libraries from that folder, so an emulator can run them unchanged.
set(LUMO_ARM64_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-root CACHE PATH "Unpacked packages")
set(LUMO_LLVM /usr/lib/llvm-19 CACHE PATH "Where clang and lld are")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LUMO_ARM64_ROOT LUMO_LLVM)
cmake_path(ABSOLUTE_PATH LUMO_ARM64_ROOT NORMALIZE OUTPUT_VARIABLE arm64_root)
if(NOT EXISTS ${arm64_root}/usr/include)
  message(FATAL_ERROR "There are no packages at ${arm64_root}: script/arm64-root unpacks them")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_SYSROOT ${arm64_root})
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET aarch64-linux-gnu)
endforeach()
set(CMAKE_C_COMPILER ${LUMO_LLVM}/bin/clang)
set(CMAKE_CXX_COMPILER ${LUMO_LLVM}/bin/clang++)
set(CMAKE_AR ${LUMO_LLVM}/bin/llvm-ar)
set(CMAKE_RANLIB ${LUMO_LLVM}/bin/llvm-ranlib)
set(CMAKE_CXX_FLAGS_INIT -ffp-contract=off) # floating-point results equal those of x86_64

# pkg-config returns usr/include, which clang must search only after the C++ headers. Passed with -I
# and not with -isystem, it is ignored, since it is a system folder already.
set(CMAKE_NO_SYSTEM_FROM_IMPORTED ON)

set(libraries ${arm64_root}/lib/aarch64-linux-gnu:${arm64_root}/usr/lib/aarch64-linux-gnu)
string(CONCAT CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld "
  "-Wl,--dynamic-linker=${arm64_root}/lib/aarch64-linux-gnu/ld-linux-aarch64.so.1 "
  "-Wl,--disable-new-dtags,-rpath,${libraries}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT -fuse-ld=lld)

set(CMAKE_FIND_ROOT_PATH ${arm64_root})
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${arm64_root})
set(ENV{PKG_CONFIG_LIBDIR}
    ${arm64_root}/usr/lib/aarch64-linux-gnu/pkgconfig:${arm64_root}/usr/share/pkgconfig)
