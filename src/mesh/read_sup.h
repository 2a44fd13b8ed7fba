// A .sup file names the files of one model result: one mesh and any number of data files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillet {

// Names are as they stand in the file, without quotes and surrounding blanks: not joined to the
// folder, and not yet in the form that opens them (see SYSTEM_NAME).
struct SUP_FILE_TYPE {
  std::string file;       // set by the caller
  std::string folder;     // of `file`, with its closing separator
  std::string mesh_file;  // stays as the caller set it when the file names none
  std::int32_t data_file_count = 0;
  std::vector<std::string> data_files;  // in the order of the file
};

// Opens `file` (see InputUnit) and reads it, a line "MESH2D name" or "DATA name" for each file;
// case does not matter, and of several meshes the last counts. Prints each step and each name. Ends
// the run when there is not enough memory for the names.
void READ_SUP(SUP_FILE_TYPE& sup);

}  // namespace quillet
