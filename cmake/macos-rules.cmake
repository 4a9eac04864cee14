# Run paths, and thus install names that begin with "@rpath/", for the cross build: included by
# CMAKE_USER_MAKE_RULES_OVERRIDE of macos-toolchain.cmake after CMake's own rules.
set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG "-Wl,-rpath,")
set(CMAKE_SHARED_LIBRARY_RUNTIME_CXX_FLAG "-Wl,-rpath,")
