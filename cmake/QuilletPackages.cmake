# The packages that cpack makes, of the program alone: for Debian; an archive for any x86-64 Linux,
# whose program is linked statically; an archive for Windows. The archives hold the manual as text
# and HTML and the licences of the libraries that are inside the program.
set(CPACK_PACKAGE_NAME quillet)
set(CPACK_PACKAGE_VENDOR "The quillet developers")
set(CPACK_PACKAGE_CONTACT "The quillet developers <support@quillet.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "post-process result maps of two-dimensional flood models")
set(CPACK_PACKAGE_DESCRIPTION
    "quillet reads the .dat and XMDF (HDF5) result files of two-dimensional flood
models and computes maxima, minima, differences, durations, flow directions
and more for every node of the mesh, one operation per run, in the memory of
one output time. It converts between the two formats and exports to EnSight
Gold for viewing.")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL archive)
set(CPACK_GENERATOR TGZ)
set(CPACK_PACKAGE_FILE_NAME quillet-${PROJECT_VERSION}-linux-x86_64)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME quillet-${PROJECT_VERSION}-windows-x86_64)
endif()

# scripts/package leaves the manual and the licences there.
set(documents ${PROJECT_BINARY_DIR}/package-documents)
if(WIN32)
  set(archived_program quillet)
else()
  set(archived_program quillet_static)
endif()
install(TARGETS ${archived_program} RUNTIME DESTINATION . COMPONENT archive EXCLUDE_FROM_ALL)
install(
  FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION .
  COMPONENT archive
  EXCLUDE_FROM_ALL)
install(
  DIRECTORY ${documents}/archive/
  DESTINATION .
  COMPONENT archive
  EXCLUDE_FROM_ALL)

install(TARGETS quillet RUNTIME DESTINATION bin COMPONENT debian EXCLUDE_FROM_ALL)
install(
  FILES ${PROJECT_SOURCE_DIR}/completions/quillet
  DESTINATION share/bash-completion/completions
  COMPONENT debian
  EXCLUDE_FROM_ALL)
install(
  FILES ${PROJECT_SOURCE_DIR}/completions/_quillet
  DESTINATION share/zsh/vendor-completions
  COMPONENT debian
  EXCLUDE_FROM_ALL)
install(
  DIRECTORY ${documents}/debian/
  DESTINATION share
  COMPONENT debian
  EXCLUDE_FROM_ALL)
set(CPACK_DEBIAN_DEBIAN_PACKAGE_NAME quillet)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
