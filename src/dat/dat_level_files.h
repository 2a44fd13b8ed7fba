// Which .dat file holds the water levels of another.
#pragma once

#include <string>
#include <string_view>

namespace quillet {

// For C:\run\res_d(range).dat: C:\run\res_h(range).dat, and C:\run\res_h.dat where that is not
// there. What only changes values ("(trim0.5)", "(dur0.3)", "(toi)", "_va") leaves no trace in the
// names. A file whose name tells no type gets the suffix. Maxima and minima have levels of their
// own or none: those of a series are of other times.
struct LevelFiles {
  std::string made_alike;  // by the same operations as the data
  std::string original;    // the levels that these began with
  bool of_extreme = false;
};
LevelFiles LEVEL_FILES(std::string_view data_file);

}  // namespace quillet
