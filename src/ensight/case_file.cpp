#include "ensight/case_file.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdint>

#include "ensight/ensight_names.h"
#include "support/numbers.h"

namespace quillet {
namespace {

constexpr std::string_view constant_keyword = "constant per case:         ";

constexpr double milliseconds_per_second = 1000.0;
constexpr double milliseconds_per_minute = 60.0 * milliseconds_per_second;
constexpr double milliseconds_per_hour = 60.0 * milliseconds_per_minute;
constexpr double milliseconds_per_day = 24.0 * milliseconds_per_hour;

// The whole units in a time whose larger parts, whole `larger` units, count elsewhere. All numbers
// are whole and far from 2^53.
double whole_units(double milliseconds, double unit, double larger) {
  const double rest = milliseconds - std::floor(milliseconds / larger) * larger;
  return std::floor(rest / unit);
}

// Days, hours, minutes, seconds.
std::array<double, 4> calendar_parts(double hours) {
  const double total = std::round(hours * milliseconds_per_hour) + 0.0;  // no negative zero
  const double seconds = whole_units(total, 1.0, milliseconds_per_minute) / milliseconds_per_second;
  return {std::floor(total / milliseconds_per_day),
          whole_units(total, milliseconds_per_hour, milliseconds_per_day),
          whole_units(total, milliseconds_per_minute, milliseconds_per_hour), seconds};
}

}  // namespace

std::string CASE_HEAD(std::string_view geometry_name) {
  return fmt::format("FORMAT\ntype: ensight gold\nGEOMETRY\nmodel: {}\nVARIABLE\n", geometry_name);
}

std::string CASE_VARIABLE_LINE(const CaseVariable& variable) {
  return fmt::format("{} per {}: {}{} {}\n", variable.is_vector ? "vector" : "scalar",
                     variable.is_per_element ? "element" : "node", variable.is_series ? "1 " : "",
                     variable.output_name, variable.file_name);
}

std::size_t LONGEST_FILE_BASE(std::size_t variable_name_length) {
  constexpr std::string_view longest_start = "vector per element: 1  ";
  constexpr std::string_view wildcard = ".****";
  return longest_case_line - longest_start.size() - wildcard.size() - variable_name_length;
}

bool CalendarConstant::fits_line() const {
  constexpr std::size_t values_per_line = 18;
  return values.size() <= values_per_line && line().size() <= longest_case_line + 1;
}

std::string CalendarConstant::line() const {
  return fmt::format("{}1 {} {}\n", constant_keyword, name, fmt::join(values, " "));
}

std::string CalendarConstant::line_naming(std::string_view file_name) const {
  return fmt::format("constant per case file: 1 {} {}\n", name, file_name);
}

std::string CalendarConstant::file_text() const {
  return fmt::format("{}\n", fmt::join(values, "\n"));
}

std::array<CalendarConstant, 4> CALENDAR_CONSTANTS(const std::vector<double>& times) {
  std::array<CalendarConstant, 4> constants{{{"day", {}}, {"hrs", {}}, {"min", {}}, {"sec", {}}}};
  for (const double time : times) {
    const auto parts = calendar_parts(time);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      constants[i].values.push_back(PLAIN_DECIMAL(parts[i]));
    }
  }
  return constants;
}

std::string CASE_REFERENCE_LINES(double x_shift, double y_shift) {
  return fmt::format("{0}Xref  {1:.5f}\n{0}Yref  {2:.5f}\n", constant_keyword, x_shift, y_shift);
}

std::string CASE_TIME_SECTION(const std::vector<std::string>& times) {
  return fmt::format(
      "TIME\n"
      "time set:               1\n"
      "number of steps: {:10}\n"
      "filename start number:  1\n"
      "filename increment:     1\n"
      "time values:\n"
      "{}\n",
      times.size(), fmt::join(times, "\n"));
}

}  // namespace quillet
