// Names in an EnSight data set. Its readers separate the items of a line by blanks, take "*" for
// digits, and take a name that begins with a digit for the number of a time set.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace quillet {

// The start of all file names: the run's base file name without closing ".dat", ".xmdf", ".txt" and
// ".case", its file-name part fit for a case file. The folder stays as it is.
std::string ENSIGHT_BASE(std::string_view base_file_name);

// The name with "_" for every blank, control character and "*".
std::string ENSIGHT_FILE_NAME(std::string_view name);

// The name as it can stand for a variable: the same, and a "d" in front of a number.
std::string ENSIGHT_VARIABLE_NAME(std::string_view name);

// The file-name part: case files name the files beside them.
std::string NAME_IN_CASE_FILE(std::string_view file_name);

// The base (without trailing blanks) with ".0007" behind it for 7. Above 9999 prints that there are
// too many and returns an empty name.
std::string ENSIGHT_NUMBER_SUFFIX(std::string_view base, std::int64_t number);

constexpr std::int64_t largest_ensight_number = 9999;

// Tells equal names apart. Case plays no part, as not every file system sees it.
class DistinctNames {
 public:
  // The name, or, when it was given out before, the name with the first of "_2", "_3", ... that
  // makes it new.
  std::string take(const std::string& name);

 private:
  std::set<std::string> taken;
};

}  // namespace quillet
