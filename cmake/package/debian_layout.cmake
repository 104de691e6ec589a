# Run by cpack on the tree that it packs: documents as Debian wants them.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(documents ${share}/doc/${CPACK_PACKAGE_NAME})
file(REMOVE ${documents}/LICENSE)  # copyright has it
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
file(GLOB manuals ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9n ${documents}/changelog ${manuals} COMMAND_ERROR_IS_FATAL ANY)
