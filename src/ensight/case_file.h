// The lines of an EnSight Gold case file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillet {

// How many output times have their constants on one line: readers cut lines at 255 characters.
constexpr int constants_per_line = 18;

std::string CASE_HEAD(std::string_view geometry_name);

// One dataset. A series belongs to time set 1 and `file_name` ends in its wildcard.
struct CaseVariable {
  bool is_vector = false;
  bool is_per_element = false;
  bool is_series = false;
  std::string output_name;
  std::string file_name;
};
std::string CASE_VARIABLE_LINE(const CaseVariable& variable);

// The output times (hours) as whole days, whole hours, whole minutes and seconds, rounded to the
// nearest millisecond: one constant each with a value per output time. Before time 0 the days are
// negative and the others are not.
std::string CASE_CALENDAR_LINES(const std::vector<double>& times);

// What the coordinates were moved by.
std::string CASE_REFERENCE_LINES(double x_shift, double y_shift);

// The time set of the series: hours.
std::string CASE_TIME_SECTION(const std::vector<double>& times);

}  // namespace quillet
