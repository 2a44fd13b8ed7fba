// Small meshes for the export.
#pragma once

#include <string>

#include "mesh/mesh_test_files.h"

namespace quillet::test {

// Two triangles over a rectangle and, to the right of it, a quadrilateral:
//
//     4 --- 3 --- 6
//     | 1 / |  3  |
//     |  /2 |     |
//     1 --- 2 --- 5
inline std::string standard_mesh() {
  return header_line(83) +
         "E3T 1 1 3 4 1 0 0 0 \"  \"\n"
         "E3T 2 1 2 3 1 0 0 0 \"  \"\n"
         "E4Q 3 2 5 6 3 1 0 0 0\n"
         "ND 1 1000.0 2000.0 5.0 0 0 0 0\n"
         "ND 2 1010.0 2000.0 4.0 0 0 0 0\n"
         "ND 3 1010.0 2010.0 4.5 0 0 0 0\n"
         "ND 4 1000.0 2010.0 6.0 0 0 0 0\n"
         "ND 5 1030.5 2000.0 -0.5 0 0 0 0\n"
         "ND 6 1030.5 2010.0 0.0 0 0 0 0\n";
}

}  // namespace quillet::test
