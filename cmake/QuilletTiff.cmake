# quillet::tiff: the TIFF library, statically where a program links with it, like HDF5: only runs
# that write a raster shall pay for it. Then it has no codec but deflate: src/raster/tiff_codecs.cpp.
find_package(TIFF REQUIRED)
include(CheckCXXSourceCompiles)

find_library(QUILLET_TIFF_STATIC libtiff.a)

if(QUILLET_TIFF_STATIC AND QUILLET_Z_STATIC)
  set(libraries ${QUILLET_TIFF_STATIC} ${QUILLET_DEFLATE} ${QUILLET_Z_STATIC})
  if(NOT WIN32)
    list(APPEND libraries m)
  endif()
  file(READ ${PROJECT_SOURCE_DIR}/src/raster/tiff_codecs.cpp codecs)
  set(CMAKE_REQUIRED_INCLUDES ${TIFF_INCLUDE_DIRS})
  set(CMAKE_REQUIRED_LIBRARIES ${libraries})
  check_cxx_source_compiles(
    "${codecs}\nint main() { return TIFFOpen(\"\", \"r\") != nullptr; }"
    QUILLET_TIFF_LINKS_STATIC)
  unset(CMAKE_REQUIRED_INCLUDES)
  unset(CMAKE_REQUIRED_LIBRARIES)
endif()

if(QUILLET_TIFF_LINKS_STATIC)
  # Looked for from the start, the list is found here before the library's own.
  add_library(quillet_tiff_codecs STATIC ${PROJECT_SOURCE_DIR}/src/raster/tiff_codecs.cpp)
  target_include_directories(quillet_tiff_codecs SYSTEM PRIVATE ${TIFF_INCLUDE_DIRS})
  target_link_libraries(quillet_tiff_codecs PRIVATE quillet_flags)
  set(QUILLET_TIFF_LIBRARIES -Wl,--undefined=_TIFFBuiltinCODECS quillet_tiff_codecs ${libraries})
else()
  message(STATUS "No static TIFF library that links: every run pays for loading the shared one")
  set(QUILLET_TIFF_LIBRARIES ${TIFF_LIBRARIES})
endif()

add_library(quillet::tiff INTERFACE IMPORTED)
set_target_properties(quillet::tiff PROPERTIES INTERFACE_LINK_LIBRARIES
                                               "${QUILLET_TIFF_LIBRARIES}")
