// Names in an EnSight data set. Its readers separate the items of a line by blanks, take "*" for
// digits and a name that begins with a digit for the number of a time set, compute with brackets
// and signs, and lose everything behind a line of more than 255 characters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace quillet {

// Of a line of the case file, without its end.
constexpr std::size_t longest_case_line = 255;

// The start of all file names: the run's base file name without closing ".dat", ".xmdf", ".txt" and
// ".case", its file-name part fit for a case file and short enough for every line and file that it
// begins. The folder stays as it is.
std::string ENSIGHT_BASE(std::string_view base_file_name);

// Letters, digits, "_", "." and "-" as they are, bytes beyond ASCII as two hexadecimal digits,
// everything else as "_".
std::string ENSIGHT_FILE_NAME(std::string_view name);

// Letters, digits, "_" and "." as they are, everything else as "_", with a "d" in front of a digit.
std::string ENSIGHT_VARIABLE_NAME(std::string_view name);

// The first line of a variable file: what readers take neither for a comment ("#") nor for two
// lines, at most 79 characters.
std::string ENSIGHT_DESCRIPTION(std::string_view text);

// The file-name part: case files name the files beside them.
std::string NAME_IN_CASE_FILE(std::string_view file_name);

// The base (without trailing blanks) with ".0007" behind it for 7. Above 9999 prints that there are
// too many and returns an empty name.
std::string ENSIGHT_NUMBER_SUFFIX(std::string_view base, std::int64_t number);

constexpr std::int64_t largest_ensight_number = 9999;

// Tells names apart that are equal or become so when they are cut. Case plays no part, as not every
// file system sees it.
class DistinctNames {
 public:
  // The name cut to `longest` characters (at least 12), or, when that was given out before, cut
  // further for the first of "_2", "_3", ... behind it that makes it new.
  std::string take(const std::string& name, std::size_t longest);

 private:
  std::set<std::string> taken;
};

}  // namespace quillet
