// The points of interest that a user lists in a CSV file.
#pragma once

#include <string>
#include <vector>

namespace quillet {

struct NamedPoint {
  std::string name;
  double x = 0;  // map coordinates, m
  double y = 0;
};

// Reads the points: a row each under a header row, with the columns name, x and y in any case and
// order; further columns are passed over. Opens the file as InputUnit does. Ends the run, naming
// the file and the row, when a column is missing, there is no point, two have one name, or a
// coordinate is no number.
std::vector<NamedPoint> READ_POINTS_FILE(const std::string& file_name);

}  // namespace quillet
