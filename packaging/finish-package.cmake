# Run by CPack between installation and packaging. A .deb has its manual page and its changelogs
# compressed, its zsh completion in a folder of Debian's own, and its overrides of lintian; an archive
# for Macs that is made elsewhere has the universal files.
set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY})

# The changelog in Debian's form names this version only; the project's own lies beside it.
function(write_debian_changelog file)
  string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # of SOURCE_DATE_EPOCH when that is set
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
  # Whatever the umask of the one who builds.
  file(CHMOD_RECURSE ${tree} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
       GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
elseif(CPACK_LUMO_UNIVERSAL_FILES)
  foreach(name lumo-exs-import liblumo-relink.dylib)
    file(INSTALL ${CPACK_LUMO_UNIVERSAL_FILES}/${name} DESTINATION ${tree}/${CPACK_LUMO_TOOL_FOLDER}
         USE_SOURCE_PERMISSIONS)
  endforeach()
endif()
