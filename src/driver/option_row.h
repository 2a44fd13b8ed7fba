// One option of the command line: how it is spelt and what it sets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "driver/run_options.h"

namespace quillet {

// An option as it stands on the command line. Columns count from 1, the dash being the first,
// however many bytes it has.
struct OptionArgument {
  std::string_view argument;
  std::size_t dash_size = 1;

  std::string_view from_column(std::size_t column) const;
  // A value that cannot be read ends the run.
  float real(std::size_t column) const;
  std::int32_t integer(std::size_t column) const;
  // The option without its dash, for naming.
  std::string tag() const;
};

enum class Match { contains, equals };

// What the argument after the option is.
enum class NextArgument { ordinary, output_name, mesh_file };

// What is compared with the key is the slice of the given width that begins after the dash; for
// most rows that makes it a test of how the option begins.
struct OptionRow {
  int turn = 0;          // options are tried in this order; the first that matches decides
  std::string_view key;  // case does not matter
  std::size_t slice_width = key.size();
  Match match = Match::contains;
  bool chooses_operation = true;  // where the row is one of an operation's
  NextArgument next = NextArgument::ordinary;
  void (*apply)(RunOptions& options, const OptionArgument& argument) = nullptr;

  bool matches(std::string_view text_after_dash) const;
};

}  // namespace quillet
