# Builds Mac programs on Linux with Debian's clang 19 and lld, and the build root that
# packaging/macos-sdk/assemble creates. LUMO_MACOS_ARCH is arm64 or x86_64, one per build folder;
# LUMO_MACOS_SDK and LUMO_LLVM replace the default paths.
set(LUMO_MACOS_ARCH arm64 CACHE STRING "The processor to build for")
set(LUMO_MACOS_SDK ${CMAKE_CURRENT_LIST_DIR}/../build/macos-sdk CACHE PATH "The build root")
set(LUMO_LLVM /usr/lib/llvm-19 CACHE PATH "Where clang and lld are")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LUMO_MACOS_ARCH LUMO_MACOS_SDK LUMO_LLVM)

cmake_path(ABSOLUTE_PATH LUMO_MACOS_SDK NORMALIZE OUTPUT_VARIABLE sdk)
if(NOT EXISTS ${sdk}/SDKSettings.json)
  message(FATAL_ERROR "There is no macOS build root at ${sdk}: script/build-macos makes it")
endif()

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.0) # macOS 13
set(CMAKE_SYSTEM_PROCESSOR ${LUMO_MACOS_ARCH})
set(CMAKE_OSX_ARCHITECTURES ${LUMO_MACOS_ARCH})
set(CMAKE_OSX_SYSROOT ${sdk})

set(CMAKE_C_COMPILER ${LUMO_LLVM}/bin/clang)
set(CMAKE_CXX_COMPILER ${LUMO_LLVM}/bin/clang++)
set(CMAKE_C_COMPILER_TARGET ${LUMO_MACOS_ARCH}-apple-macos)
set(CMAKE_CXX_COMPILER_TARGET ${LUMO_MACOS_ARCH}-apple-macos)
foreach(tool AR RANLIB STRIP NM OTOOL INSTALL_NAME_TOOL)
  string(TOLOWER ${tool} name)
  string(REPLACE _ - name ${name})
  set(CMAKE_${tool} ${LUMO_LLVM}/bin/llvm-${name})
endforeach()

# clang would otherwise use its own libc++ headers, which are configured for Linux.
set(CMAKE_CXX_FLAGS_INIT "-stdlib++-isystem ${sdk}/usr/include/c++/v1")
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT -fuse-ld=lld)
endforeach()

# CMake enables run paths only after it has queried the macOS version of the host. This file is
# included later.
set(CMAKE_USER_MAKE_RULES_OVERRIDE ${CMAKE_CURRENT_LIST_DIR}/macos-rules.cmake)

set(CMAKE_FIND_ROOT_PATH ${sdk})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
