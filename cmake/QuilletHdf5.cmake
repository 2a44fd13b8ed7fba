# QUILLET_HDF5_LIBRARIES: HDF5's C library, statically where a program links with it: loading the
# shared one, with all that it draws in, takes longer than a run on a small .dat file.
include(CheckCSourceCompiles)
if(CMAKE_CROSSCOMPILING)
  # CMake's own search asks the HDF5 of the machine at hand.
  find_path(HDF5_C_INCLUDE_DIRS hdf5.h PATH_SUFFIXES hdf5/serial REQUIRED)
else()
  find_package(HDF5 REQUIRED COMPONENTS C)
endif()

set(folders ${HDF5_LIBRARY_DIRS})
foreach(library IN LISTS HDF5_C_LIBRARIES)
  get_filename_component(folder "${library}" DIRECTORY)
  list(APPEND folders "${folder}")
endforeach()
find_library(QUILLET_HDF5_STATIC libhdf5.a HINTS ${folders} PATH_SUFFIXES hdf5/serial)
find_library(QUILLET_SZ_STATIC libsz.a)
find_library(QUILLET_AEC_STATIC libaec.a)
find_library(QUILLET_Z_STATIC libz.a)

set(QUILLET_HDF5_LIBRARIES)

# Takes the libraries given, when all were found and a program links with them.
function(quillet_try_hdf5 description)
  string(MAKE_C_IDENTIFIER "QUILLET_HDF5_IS_${description}" result)
  if(QUILLET_HDF5_LIBRARIES OR "${ARGN}" MATCHES "NOTFOUND")
    return()
  endif()
  set(CMAKE_REQUIRED_INCLUDES ${HDF5_C_INCLUDE_DIRS})
  set(CMAKE_REQUIRED_LIBRARIES ${ARGN} ${CMAKE_DL_LIBS})
  if(NOT WIN32)
    list(APPEND CMAKE_REQUIRED_LIBRARIES m)
  endif()
  check_c_source_compiles("#include <hdf5.h>\nint main(void) { return H5open(); }" ${result})
  if(${result})
    set(QUILLET_HDF5_LIBRARIES ${CMAKE_REQUIRED_LIBRARIES} PARENT_SCOPE)
  endif()
endfunction()

quillet_try_hdf5("static" ${QUILLET_HDF5_STATIC} ${QUILLET_Z_STATIC})
quillet_try_hdf5("static_with_szip" ${QUILLET_HDF5_STATIC} ${QUILLET_SZ_STATIC}
                 ${QUILLET_AEC_STATIC} ${QUILLET_Z_STATIC})
if(NOT QUILLET_HDF5_LIBRARIES)
  if(CMAKE_CROSSCOMPILING)
    message(FATAL_ERROR "No static HDF5 that links")
  endif()
  message(STATUS "No static HDF5 that links: every run pays for loading the shared one")
  set(QUILLET_HDF5_LIBRARIES ${HDF5_C_LIBRARIES})
endif()
find_library(QUILLET_DEFLATE NAMES libdeflate.a deflate REQUIRED)
find_path(QUILLET_DEFLATE_INCLUDE libdeflate.h REQUIRED)

# By these names, and not by their places, the installed package asks for the libraries.
add_library(quillet::hdf5 INTERFACE IMPORTED)
set_target_properties(quillet::hdf5 PROPERTIES INTERFACE_LINK_LIBRARIES
                                               "${QUILLET_HDF5_LIBRARIES}")
add_library(quillet::deflate INTERFACE IMPORTED)
set_target_properties(quillet::deflate PROPERTIES INTERFACE_LINK_LIBRARIES "${QUILLET_DEFLATE}")
