// The lines of an EnSight Gold case file. Numbers in it are plain decimals: readers of one family
// take no exponents there, and five digits would merge output times and lose the place of the mesh.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace quillet {

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

// How long the name of a variable may be, and, for a name of a given length, that of the file base
// of its series, so that the line keeps to its length whatever the variable is.
constexpr std::size_t longest_variable_name = 79;
std::size_t LONGEST_FILE_BASE(std::size_t variable_name_length);

// The output times (hours) in parts: whole days, whole hours, whole minutes and seconds, rounded to
// the nearest millisecond. Before time 0 the days are negative and the others are not.
struct CalendarConstant {
  std::string_view name;            // "day", "hrs", "min", "sec"
  std::vector<std::string> values;  // one per output time

  // True when a line takes them; else they stand in a file of their own, as readers differ in what
  // they make of a keyword that comes again.
  bool fits_line() const;
  std::string line() const;
  std::string line_naming(std::string_view file_name) const;
  std::string file_text() const;
};
std::array<CalendarConstant, 4> CALENDAR_CONSTANTS(const std::vector<double>& times);

// What the coordinates were moved by.
std::string CASE_REFERENCE_LINES(double x_shift, double y_shift);

// The time set of the series: hours, as texts.
std::string CASE_TIME_SECTION(const std::vector<std::string>& times);

}  // namespace quillet
