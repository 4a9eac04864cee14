# Settings of all targets: language standard, warnings, sanitizers, hidden visibility, and one
# output folder for the tool and the library.
include_guard()
include(CheckPIESupported)
include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
check_pie_supported(LANGUAGES CXX) # links executables with -pie
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release)
endif()

if(LUMO_LIBCXX) # for all targets, since GoogleTest needs it too
  add_compile_options(-stdlib=libc++)
  add_link_options(-stdlib=libc++)
endif()

# Warnings, hardening and sanitizers, linked by all targets of the project and no others.
add_library(lumo_build_flags INTERFACE)
target_compile_options(lumo_build_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  -Wnon-virtual-dtor -Woverloaded-virtual $<$<BOOL:${LUMO_WERROR}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 wrongly warns about overlapping copies in std::string (GCC bug 105651).
  target_compile_options(lumo_build_flags INTERFACE -Wno-restrict)
endif()
# A release is hardened, and reproducible in any source and build folder.
set(release_options -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
if(NOT APPLE)
  list(APPEND release_options -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  target_link_options(lumo_build_flags INTERFACE
    $<$<CONFIG:Release>:LINKER:-z,relro> $<$<CONFIG:Release>:LINKER:-z,now>)
endif()
target_compile_options(lumo_build_flags INTERFACE "$<$<CONFIG:Release>:${release_options}>")
if(LUMO_SANITIZE)
  target_compile_options(lumo_build_flags INTERFACE -fsanitize=${LUMO_SANITIZE}
    -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  target_link_options(lumo_build_flags INTERFACE -fsanitize=${LUMO_SANITIZE})
endif()

# Most of the compiled code is tests, in three builds, so tests are not optimised; the code under
# test is.
add_library(lumo_test_flags INTERFACE)
target_compile_options(lumo_test_flags INTERFACE $<$<CONFIG:RelWithDebInfo>:-O0 -g1>)

# lumo_add_test(NAME SOURCES... [LIBS ...] [LABELS ...]): a GoogleTest program, each of whose tests
# is registered with CTest under its own name.
function(lumo_add_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBS} lumo_base lumo_test_support GTest::gtest_main
                                        lumo_build_flags lumo_test_flags)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 600 PROPERTIES TIMEOUT 1800 LABELS "${arg_LABELS}")
endfunction()

# lumo_add_python_test(NAME SCRIPT [LABELS ...] [ENVIRONMENT ...]): a unittest program, registered
# as one test, which finds the modules in tests/support. CTest reports it as skipped when no test
# failed but some were skipped.
function(lumo_add_python_test name script)
  cmake_parse_arguments(arg "" "" "LABELS;ENVIRONMENT" ${ARGN})
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME ${name} COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/${script})
  list(APPEND arg_ENVIRONMENT PYTHONPATH=${PROJECT_SOURCE_DIR}/tests/support
                              PYTHONDONTWRITEBYTECODE=1)
  set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT 1800
    SKIP_REGULAR_EXPRESSION "OK \\(skipped=" ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()

# lumo_add_fuzzer(NAME SOURCES... [LIBS ...]): a fuzz target. Without LUMO_FUZZ it is linked with a
# main that replays files, so that it is compiled in every build, and the inputs in fuzz/corpus/NAME
# become a test. The programs are in bin/fuzz; the target fuzzers builds them all.
add_custom_target(fuzzers)
function(lumo_add_fuzzer name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBS} lumo_base lumo_build_flags)
  set_target_properties(${name} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/fuzz)
  add_dependencies(fuzzers ${name})
  if(LUMO_FUZZ)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    return()
  endif()
  target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
  if(EXISTS ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
    add_test(NAME ${name}.corpus COMMAND ${name} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
    set_tests_properties(${name}.corpus PROPERTIES TIMEOUT 1800 LABELS fuzz)
  endif()
endfunction()

# lumo_add_benchmark(NAME SOURCES... [LIBS ...]): a benchmark program that prints ratios against a
# reference measured beside it; bench/run documents its usage. The programs are in bin/bench; the
# target benchmarks builds them all.
add_custom_target(benchmarks)
function(lumo_add_benchmark name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBS} lumo_base lumo_build_flags)
  set_target_properties(${name} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/bench)
  add_dependencies(benchmarks ${name})
endfunction()
