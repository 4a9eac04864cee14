# Run by CPack between installation and packaging. A .deb has its manual page and its changelog
# compressed and its zsh completion in a folder of Debian's own; an archive for Macs that is made
# elsewhere has the universal files.
set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
if(CPACK_GENERATOR STREQUAL "DEB")
  set(share ${tree}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
  file(RENAME ${share}/doc/lumo-exs-import/CHANGELOG.md ${share}/doc/lumo-exs-import/changelog)
  execute_process(COMMAND gzip -9n ${share}/man/man1/lumo-exs-import.1
                                   ${share}/doc/lumo-exs-import/changelog
                  COMMAND_ERROR_IS_FATAL ANY)
  file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
elseif(CPACK_LUMO_UNIVERSAL_FILES)
  foreach(name lumo-exs-import liblumo-relink.dylib)
    file(INSTALL ${CPACK_LUMO_UNIVERSAL_FILES}/${name} DESTINATION ${tree}/${CPACK_LUMO_TOOL_FOLDER}
         USE_SOURCE_PERMISSIONS)
  endforeach()
endif()
