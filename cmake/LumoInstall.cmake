# What an installation holds: the tool and its library side by side in a folder of their own, a
# link to the tool in bin/, its manual page, completions and documents, and what a program needs
# that uses the library itself:
#   find_package(lumo-relink REQUIRED)
#   target_link_libraries(program PRIVATE lumo::relink)
# Every path is relative to the prefix, so that an installed tree can be moved.
include_guard()
include(CMakePackageConfigHelpers)

set(lumo_tool_folder lib/lumo-exs-import)
set(lumo_package_folder lib/cmake/lumo-relink)

install(TARGETS lumo-exs-import RUNTIME DESTINATION ${lumo_tool_folder})
install(TARGETS lumo_relink EXPORT lumo-relink LIBRARY DESTINATION ${lumo_tool_folder})
install(DIRECTORY relink/include/ DESTINATION include)

file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/installed-link)
file(CREATE_LINK ../${lumo_tool_folder}/lumo-exs-import
     ${PROJECT_BINARY_DIR}/installed-link/lumo-exs-import SYMBOLIC)
install(FILES ${PROJECT_BINARY_DIR}/installed-link/lumo-exs-import DESTINATION bin)

install(EXPORT lumo-relink NAMESPACE lumo:: FILE lumo-relink-config.cmake
        DESTINATION ${lumo_package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lumo-relink-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lumo-relink-config-version.cmake
        DESTINATION ${lumo_package_folder})

configure_file(packaging/lumo-exs-import.1.in ${PROJECT_BINARY_DIR}/lumo-exs-import.1 @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumo-exs-import.1 DESTINATION share/man/man1)
install(FILES packaging/completion/lumo-exs-import.bash
        DESTINATION share/bash-completion/completions RENAME lumo-exs-import)
install(FILES packaging/completion/_lumo-exs-import DESTINATION share/zsh/site-functions)
install(FILES CHANGELOG.md packaging/copyright docs/report-line.md docs/report-line.schema.json
        DESTINATION share/doc/lumo-exs-import)

include(LumoPackage)
