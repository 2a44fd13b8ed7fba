#include "points/points_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "points/csv_rows.h"
#include "support/console.h"
#include "support/input_unit.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

std::string read_whole(const InputUnit& file) try {
  std::string text(static_cast<std::size_t>(file.size()), '\0');
  const auto found = file.read_at(0, text.data(), file.size());
  text.resize(static_cast<std::size_t>(found));
  return text;
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

class PointsReader {
 public:
  PointsReader(const std::string& name, std::string_view text) : file_name(name), rows(text) {}

  std::vector<NamedPoint> read() {
    if (!rows.next(row)) fail("expected a header with the columns name, x and y, found nothing");
    name_column = column_called("name");
    x_column = column_called("x");
    y_column = column_called("y");
    std::vector<NamedPoint> points;
    while (rows.next(row)) points.push_back(point());
    if (points.empty()) fail("expected a point in each row under the header, found none");
    return points;
  }

 private:
  std::size_t column_called(std::string_view name) const {
    const auto is_it = [&](const std::string& field) { return LOWERCASE(field) == name; };
    const auto found = std::find_if(row.begin(), row.end(), is_it);
    if (found == row.end()) fail(fmt::format("expected a column {}, found none", name));
    if (std::count_if(row.begin(), row.end(), is_it) > 1) {
      fail(fmt::format("expected one column {}, found several", name));
    }
    return static_cast<std::size_t>(found - row.begin());
  }

  NamedPoint point() {
    if (rows.is_broken()) fail("expected a closing quotation mark, found none");
    NamedPoint result{field(name_column), coordinate(x_column, "x"), coordinate(y_column, "y")};
    if (result.name.empty()) fail("expected a name, found none");
    if (!names.insert(result.name).second) {
      fail("expected every name once, found " + QUOTED(result.name) + " again");
    }
    return result;
  }

  const std::string& field(std::size_t column) const {
    static const std::string nothing;
    return column < row.size() ? row[column] : nothing;
  }

  // A number and nothing else: "3,5" is none.
  double coordinate(std::size_t column, std::string_view name) const {
    const std::string& text = field(column);
    const std::optional<double> value = READ_WHOLE_DOUBLE(text);
    if (!value) fail(fmt::format("expected a number in column {}, found {}", name, QUOTED(text)));
    return *value;
  }

  [[noreturn]] void fail(const std::string& reason) const {
    FAIL_READING(file_name, fmt::format("row {}: {}", std::max(rows.row_number(), 1), reason));
  }

  const std::string& file_name;
  CsvReader rows;
  CsvRow row;
  std::size_t name_column = 0;
  std::size_t x_column = 0;
  std::size_t y_column = 0;
  std::unordered_set<std::string> names;
};

}  // namespace

std::vector<NamedPoint> READ_POINTS_FILE(const std::string& file_name) {
  const InputUnit file(file_name);
  const std::string text = read_whole(file);
  return PointsReader(file_name, text).read();
}

}  // namespace quillet
