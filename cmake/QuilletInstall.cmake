# What cmake --install puts in place: the program, its manual page and completion, and the library
# with its headers and a CMake package, so that find_package(quillet) gives quillet::quillet_core.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/quillet)

install(TARGETS quillet RUNTIME)
install(
  TARGETS quillet_core
  EXPORT quilletTargets
  ARCHIVE)
install(
  DIRECTORY ${PROJECT_SOURCE_DIR}/src/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillet
  FILES_MATCHING
  PATTERN "*.h"
  # Inside the XMDF reader and writer, which need HDF5's own headers ...
  PATTERN "xf_*.h" EXCLUDE)
# ... which these do not.
foreach(header IN ITEMS xf_dataset_reader xf_file xf_range xf_status xf_writer)
  install(FILES ${PROJECT_SOURCE_DIR}/src/xf/${header}.h
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillet/xf)
endforeach()
install(
  EXPORT quilletTargets
  NAMESPACE quillet::
  DESTINATION ${package_dir})

configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/quilletConfig.cmake.in ${PROJECT_BINARY_DIR}/quilletConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/quilletConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/quilletConfig.cmake
              ${PROJECT_BINARY_DIR}/quilletConfigVersion.cmake DESTINATION ${package_dir})

install(FILES ${PROJECT_SOURCE_DIR}/docs/quillet.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_SOURCE_DIR}/completions/quillet
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
