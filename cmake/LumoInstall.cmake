# The contents of an installation: the programs and the tool's library in one folder, links to the
# programs in bin/, manual pages, completions and documents, and the files for programs that use the
# library:
#   find_package(lumo-relink REQUIRED)
#   target_link_libraries(program PRIVATE lumo::relink) The folders are those of GNUInstallDirs; the
#   library folder may be lib, lib64 or one of Debian's multiarch folders. With paths relative to
#   the prefix, the default, an installed tree is relocatable.
include_guard()
include(CMakePackageConfigHelpers)

set(lumo_tool_folder ${CMAKE_INSTALL_LIBDIR}/${PROJECT_NAME})
set(lumo_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/lumo-relink)

install(TARGETS lumo_relink EXPORT lumo-relink LIBRARY DESTINATION ${lumo_tool_folder})
install(DIRECTORY relink/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT lumo-relink NAMESPACE lumo:: FILE lumo-relink-config.cmake
        DESTINATION ${lumo_package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lumo-relink-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lumo-relink-config-version.cmake
        DESTINATION ${lumo_package_folder})

file(RELATIVE_PATH from_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/installed-link)

# lumo_install_program(NAME): a program, the link to it, its manual page and its completions.
function(lumo_install_program name)
  install(TARGETS ${name} RUNTIME DESTINATION ${lumo_tool_folder})
  file(CREATE_LINK ${from_bin_to_lib}/${PROJECT_NAME}/${name}
       ${PROJECT_BINARY_DIR}/installed-link/${name} SYMBOLIC)
  install(FILES ${PROJECT_BINARY_DIR}/installed-link/${name} DESTINATION ${CMAKE_INSTALL_BINDIR})
  configure_file(packaging/${name}.1.in ${PROJECT_BINARY_DIR}/${name}.1 @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES packaging/completion/${name}.bash
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${name})
  install(FILES packaging/completion/_${name}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
endfunction()

lumo_install_program(lumo-exs-import)
if(TARGET lumo-import-library)
  lumo_install_program(lumo-import-library)
  install(FILES docs/library.md docs/library.png DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
install(FILES CHANGELOG.md packaging/copyright docs/report-line.md docs/report-line.schema.json
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
