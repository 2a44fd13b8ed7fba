#include "ensight/case_file.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdint>

#include "ensight/item_writer.h"

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

// A negative number fills its field and needs a blank before it.
std::string separated(double value) {
  const std::string text = E12_5_TEXT(value);
  return text.front() == ' ' ? text : ' ' + text;
}

std::string constant_lines(std::string_view name, const std::vector<double>& values) {
  constexpr std::size_t longest_line = 254;
  const std::string keyword = fmt::format("{}1 {}", constant_keyword, name);
  std::string lines;
  std::string line = keyword;
  int count = 0;
  for (const double value : values) {
    const std::string text = separated(value);
    if (count == constants_per_line || line.size() + text.size() > longest_line) {
      lines += line + '\n';
      line = keyword;
      count = 0;
    }
    line += text;
    ++count;
  }
  return lines + line + '\n';
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

std::string CASE_CALENDAR_LINES(const std::vector<double>& times) {
  constexpr std::array<std::string_view, 4> names{"day", "hrs", "min", "sec"};
  std::string lines;
  for (std::size_t part = 0; part < names.size(); ++part) {
    std::vector<double> values;
    for (const double time : times) values.push_back(calendar_parts(time)[part]);
    lines += constant_lines(names[part], values);
  }
  return lines;
}

std::string CASE_REFERENCE_LINES(double x_shift, double y_shift) {
  return fmt::format("{}Xref  {}\n{}Yref  {}\n", constant_keyword, E12_5_TEXT(x_shift),
                     constant_keyword, E12_5_TEXT(y_shift));
}

std::string CASE_TIME_SECTION(const std::vector<double>& times) {
  std::string section =
      "TIME\n"
      "time set:               1\n"
      "number of steps: " +
      I10_TEXT(static_cast<std::int32_t>(times.size())) +
      "\n"
      "filename start number:  1\n"
      "filename increment:     1\n"
      "time values:\n";
  for (const double time : times) section += E12_5_TEXT(time) + '\n';
  return section;
}

}  // namespace quillet
