#include "points/csv_rows.h"

#include "support/text.h"

namespace quillet {

CsvReader::CsvReader(std::string_view file_text) : text(file_text) {
  constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
  if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
}

bool CsvReader::at_row_end() const {
  return at == text.size() || text[at] == '\n' || text[at] == '\r';
}

void CsvReader::pass_row_end() {
  if (at < text.size() && text[at] == '\r') ++at;
  if (at < text.size() && text[at] == '\n') ++at;
}

bool CsvReader::next(CsvRow& row) {
  while (at < text.size()) {
    ++number;
    row = {take_field()};
    while (!at_row_end()) {
      ++at;  // the comma
      row.push_back(take_field());
    }
    pass_row_end();
    if (row.size() > 1 || !row.front().empty()) return true;
  }
  return false;
}

std::string CsvReader::take_field() {
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  std::string field;
  const bool is_quoted = at < text.size() && text[at] == '"';
  if (is_quoted) take_quoted(field);
  const std::size_t start = at;
  while (!at_row_end() && text[at] != ',') ++at;
  field += TRIM_BOTH(text.substr(start, at - start));
  return field;
}

void CsvReader::take_quoted(std::string& field) {
  for (++at; at < text.size(); ++at) {
    if (text[at] == '"') {
      ++at;
      if (at == text.size() || text[at] != '"') return;
    }
    field += text[at];
  }
  open_quote = true;
}

std::string CSV_FIELD(std::string_view text) {
  const bool has_edge_blanks = TRIM_BOTH(text).size() != text.size();
  if (!has_edge_blanks && text.find_first_of(",\"\r\n") == std::string_view::npos) {
    return std::string(text);
  }
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field + '"';
}

}  // namespace quillet
