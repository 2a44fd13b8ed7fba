# What cmake --install puts in place: the program, its manual page and completion, and the library
# with its public headers, a CMake package, so that find_package(quillet) gives
# quillet::quillet_core, and a file for pkg-config. All of it may be moved as a whole.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/quillet)

install(TARGETS quillet RUNTIME)
install(
  TARGETS quillet_core
  EXPORT quilletTargets
  ARCHIVE
  FILE_SET public_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillet)
install(
  EXPORT quilletTargets
  NAMESPACE quillet::
  DESTINATION ${package_dir})

# What HDF5 was made of, by name: it stands elsewhere on other machines.
set(hdf5_archives "")
set(hdf5_system_libraries "")
foreach(library IN LISTS QUILLET_HDF5_LIBRARIES)
  if(library MATCHES "/([^/]+\\.a)$")
    list(APPEND hdf5_archives ${CMAKE_MATCH_1})
  elseif(NOT library MATCHES "/")
    list(APPEND hdf5_system_libraries ${library})
  endif()
endforeach()
if(NOT hdf5_archives)
  set(hdf5_system_libraries "")
endif()
list(JOIN hdf5_archives " " hdf5_archives)
list(JOIN hdf5_system_libraries " " hdf5_system_libraries)
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/quilletConfig.cmake.in ${PROJECT_BINARY_DIR}/quilletConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/quilletConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/quilletConfig.cmake
              ${PROJECT_BINARY_DIR}/quilletConfigVersion.cmake DESTINATION ${package_dir})

# For pkg-config: the packages that it knows of those that the library needs; the others by name.
find_program(QUILLET_PKG_CONFIG NAMES pkg-config pkgconf)
function(add_to_pc library packages)
  foreach(package IN LISTS packages)
    if(QUILLET_PKG_CONFIG AND NOT CMAKE_CROSSCOMPILING)
      execute_process(COMMAND ${QUILLET_PKG_CONFIG} --exists ${package} RESULT_VARIABLE unknown)
      if(unknown EQUAL 0)
        set(pc_requires "${pc_requires} ${package}" PARENT_SCOPE)
        return()
      endif()
    endif()
  endforeach()
  set(pc_libs "${pc_libs} -l${library}" PARENT_SCOPE)
endfunction()
set(pc_requires "")
set(pc_libs "")
add_to_pc(fmt fmt)
add_to_pc(hdf5 "hdf5-serial;hdf5")
add_to_pc(deflate libdeflate)
add_to_pc(tiff libtiff-4)
file(RELATIVE_PATH pc_to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/quillet.pc.in ${PROJECT_BINARY_DIR}/quillet.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quillet.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES ${PROJECT_SOURCE_DIR}/docs/quillet.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_SOURCE_DIR}/completions/quillet
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${PROJECT_SOURCE_DIR}/completions/_quillet
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
