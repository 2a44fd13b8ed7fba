// The rows of a CSV file: fields between commas, in double quotes where they hold commas, quotes
// (doubled) or line ends.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillet {

using CsvRow = std::vector<std::string>;

class CsvReader {
 public:
  // A byte order mark at the start is passed over.
  explicit CsvReader(std::string_view file_text);

  // The next row that is not blank; false at the end. Fields without quotes lose the blanks around
  // them. A quote that is never closed ends with the file.
  bool next(CsvRow& row);

  // Of the row that next() gave: blank rows count too, the first is 1.
  int row_number() const { return number; }

  // The last row ended inside quotes.
  bool is_broken() const { return open_quote; }

 private:
  std::string take_field();
  void take_quoted(std::string& field);
  bool at_row_end() const;
  void pass_row_end();

  std::string_view text;
  std::size_t at = 0;
  int number = 0;
  bool open_quote = false;
};

// A text as a field: in quotes where it needs them.
std::string CSV_FIELD(std::string_view text);

}  // namespace quillet
