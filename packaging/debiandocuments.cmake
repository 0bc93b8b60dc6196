# Gives the Debian package its changelog, and compresses that and the man pages as its rules want it.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(changelog ${share}/doc/ovmic/changelog)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${changelog}
"ovmic (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * What is new: CHANGELOG.md in this folder.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
file(GLOB_RECURSE pages ${share}/man/*.1)
execute_process(COMMAND gzip -9n ${changelog} ${pages} COMMAND_ERROR_IS_FATAL ANY)
