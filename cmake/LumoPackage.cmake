# Packages of an installation, built by the target `package`: a .deb on Linux (preset `deb`, with
# Debian's folders), a relocatable .tar.gz for a Mac. Name and version are the project's.
include_guard()

set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_VENDOR "the authors of ${PROJECT_NAME}")
set(CPACK_PACKAGE_CONTACT "the authors of ${PROJECT_NAME} <nobody@localhost>")
set(CPACK_LUMO_TOOL_FOLDER ${lumo_tool_folder})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/finish-package.cmake)
set(CPACK_VERBATIM_VARIABLES ON)

if(APPLE)
  set(CPACK_GENERATOR TGZ)
  set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-macos)
  if(CMAKE_CROSSCOMPILING)
    # A build is for one processor; script/build-macos stores the universal files there.
    set(CPACK_LUMO_UNIVERSAL_FILES ${PROJECT_SOURCE_DIR}/build/macos)
  endif()
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_LUMO_LINTIAN_OVERRIDES ${PROJECT_SOURCE_DIR}/packaging/lintian-overrides)
  set(CPACK_STRIP_FILES ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION sound)
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
      "Loads EXS24 instruments and AUSampler presets, copies their samples into
a show, writes the sampler's state with references into the show, and
checks that it loads from there. It plays no sound. lumo-import-library
imports whole folders of instruments and summarises the failures.")
  # Adds dependencies on the packages that provide the libraries of the files.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  # Loaded when a sample needs it, and thus not among them.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libsndfile1")
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
endif()
include(CPack)
