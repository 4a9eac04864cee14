# CPack runs this between installation and packaging. In a .deb the manual pages and the changelogs
# are compressed, the zsh completion is in Debian's folder for it, and lintian's overrides are
# added; an archive for Macs that is made on another system gets the universal files.
set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY})

# The changelog in Debian's format has this version only; the project's changelog is beside it.
function(write_debian_changelog file)
  string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH when that is set
  file(WRITE ${file} "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * The changes are listed in CHANGELOG.md.gz.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
endfunction()

if(CPACK_GENERATOR STREQUAL "DEB")
  set(share ${tree}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
  set(documents ${share}/doc/${CPACK_PACKAGE_NAME})
  write_debian_changelog(${documents}/changelog)
  file(GLOB to_compress ${share}/man/man1/* ${documents}/changelog ${documents}/CHANGELOG.md)
  execute_process(COMMAND gzip -9n ${to_compress} COMMAND_ERROR_IS_FATAL ANY)
  file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
  file(MAKE_DIRECTORY ${share}/lintian/overrides)
  file(COPY_FILE ${CPACK_LUMO_LINTIAN_OVERRIDES} ${share}/lintian/overrides/${CPACK_PACKAGE_NAME})
  # Permissions do not depend on the umask of the build.
  file(CHMOD_RECURSE ${tree} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
       GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
elseif(CPACK_LUMO_UNIVERSAL_FILES)
  foreach(name lumo-exs-import lumo-import-library liblumo-relink.dylib)
    # file(INSTALL) would keep the file of one processor when both were made within a second.
    file(COPY_FILE ${CPACK_LUMO_UNIVERSAL_FILES}/${name} ${tree}/${CPACK_LUMO_TOOL_FOLDER}/${name})
  endforeach()
endif()
