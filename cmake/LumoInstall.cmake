# The contents of an installation: the tool and its library in a folder of their own, a link to the
# tool in bin/, its manual page, completions and documents, and what a program needs that uses the
# library itself:
#   find_package(lumo-relink REQUIRED)
#   target_link_libraries(program PRIVATE lumo::relink)
# The folders are those of GNUInstallDirs; the library folder may be lib, lib64 or one of Debian's
# multiarch folders. With paths relative to the prefix, the default, an installed tree can be moved.
include_guard()
include(CMakePackageConfigHelpers)

set(lumo_tool_folder ${CMAKE_INSTALL_LIBDIR}/${PROJECT_NAME})
set(lumo_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/lumo-relink)

install(TARGETS lumo-exs-import RUNTIME DESTINATION ${lumo_tool_folder})
install(TARGETS lumo_relink EXPORT lumo-relink LIBRARY DESTINATION ${lumo_tool_folder})
install(DIRECTORY relink/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

file(RELATIVE_PATH from_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/installed-link)
file(CREATE_LINK ${from_bin_to_lib}/${PROJECT_NAME}/lumo-exs-import
     ${PROJECT_BINARY_DIR}/installed-link/lumo-exs-import SYMBOLIC)
install(FILES ${PROJECT_BINARY_DIR}/installed-link/lumo-exs-import
        DESTINATION ${CMAKE_INSTALL_BINDIR})

install(EXPORT lumo-relink NAMESPACE lumo:: FILE lumo-relink-config.cmake
        DESTINATION ${lumo_package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lumo-relink-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lumo-relink-config-version.cmake
        DESTINATION ${lumo_package_folder})

configure_file(packaging/lumo-exs-import.1.in ${PROJECT_BINARY_DIR}/lumo-exs-import.1 @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumo-exs-import.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/completion/lumo-exs-import.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME lumo-exs-import)
install(FILES packaging/completion/_lumo-exs-import DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES CHANGELOG.md packaging/copyright docs/report-line.md docs/report-line.schema.json
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
