# Read by cpack for each kind of package: the archive gets the flat folder, the Debian package the standard ones.
if(CPACK_GENERATOR STREQUAL DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debiandocuments.cmake)
else()
  list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build_folder)
  set(CPACK_INSTALL_CMAKE_PROJECTS ${build_folder} ovmic portable /)
endif()
