#include "driver/argument_parser.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "results/result_types.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::size_t longest_argument = 1000;
constexpr std::size_t longest_tag = 100;
constexpr std::size_t longest_type_code = 4;

[[noreturn]] void fail_value() {
  SAY("ERROR - Reading time for keep or remove argument, or cutoff depth for duration");
  END_WITH_PAUSE();
}

// One option as it stands on the command line. Columns count from 1, the dash being the first.
struct Option {
  std::string_view argument;

  std::string_view from_column(std::size_t column) const {
    return argument.substr(std::min(column - 1, argument.size()));
  }
  float real(std::size_t column) const {
    const auto value = READ_REAL(from_column(column));
    if (!value) fail_value();
    return *value;
  }
  std::int32_t integer(std::size_t column) const {
    const auto value = READ_INTEGER(from_column(column));
    if (!value) fail_value();
    return *value;
  }
  std::string tag() const { return std::string(TRIMF(argument.substr(1)).substr(0, longest_tag)); }
};

enum class NextArgument { ordinary, output_name, mesh_file };

struct Parser {
  RunOptions options;
  NextArgument next = NextArgument::ordinary;
};

void set_time(RunOptions& options, float time) {
  options.selected_time = time;
  options.time_given = true;
}

void set_tagged(RunOptions& options, Operation operation, const Option& option) {
  options.add(operation);
  options.operation_tag = option.tag();
}

void set_type(RunOptions& options, const Option& option) {
  options.type_given = true;
  options.type_code = TRIMF(option.from_column(6).substr(0, longest_type_code));
  LOOK_UP_TYPE_NAME(options.type_code, options.type_name);
  if (BLANK(options.type_name)) {
    FAIL_RUN("ERROR - Unable to interpret Map Output Data Type: " + QUOTED(options.type_code));
  }
}

void set_scalar_id(RunOptions& options, const Option& option) {
  if (options.scalar_id) {
    FAIL_RUN("ERROR - Only one scalar dataset can be specified with \"-s\" option..");
  }
  options.scalar_id = option.integer(3);
}

void set_vector_id(RunOptions& options, const Option& option) {
  if (options.vector_id) {
    FAIL_RUN("ERROR - Only one vector dataset can be specified with \"-v\" option..");
  }
  options.vector_id = option.integer(3);
}

enum class Match { contains, equals };

// The first row whose key matches decides. What is examined is the slice of the given width that
// begins after the dash; for most rows that makes it a test of how the option begins.
struct OptionRow {
  std::string_view key;
  std::size_t slice_width;
  Match match;
  void (*apply)(Parser& parser, const Option& option);
};

constexpr std::array<OptionRow, 28> option_table{{
    {"2dm", 3, Match::equals,
     [](Parser& parser, const Option&) { parser.next = NextArgument::mesh_file; }},
    {"conv", 4, Match::contains,
     [](Parser& parser, const Option&) { parser.options.add(Operation::conv); }},
    {"con", 3, Match::contains,
     [](Parser& parser, const Option&) { parser.options.add(Operation::con); }},
    {"max", 3, Match::contains,
     [](Parser& parser, const Option&) { parser.options.add(Operation::max); }},
    {"min", 3, Match::contains,
     [](Parser& parser, const Option&) { parser.options.add(Operation::min); }},
    {"dif", 3, Match::contains,
     [](Parser& parser, const Option&) { parser.options.add(Operation::dif); }},
    {"dur", 3, Match::contains,
     [](Parser& parser, const Option& option) {
       set_tagged(parser.options, Operation::dur, option);
       parser.options.cutoff = option.real(5);
     }},
    {"ddur", 4, Match::contains,
     [](Parser& parser, const Option& option) {
       parser.options.add(Operation::ddur);
       parser.options.cutoff = option.real(6);
     }},
    {"trim", 4, Match::contains,
     [](Parser& parser, const Option& option) {
       set_tagged(parser.options, Operation::trim, option);
       parser.options.cutoff = option.real(6);
     }},
    // The slice is wider than the key: "-atoi" is -toi too, its value read from the same column.
    {"toi", 4, Match::contains,
     [](Parser& parser, const Option& option) {
       parser.options.add(Operation::toi);
       parser.options.cutoff = option.real(5);
     }},
    {"b", 1, Match::contains, [](Parser& parser, const Option&) { parser.options.batch = true; }},
    {"k", 1, Match::contains,
     [](Parser& parser, const Option& option) {
       parser.options.add(Operation::keep);
       set_time(parser.options, option.real(3));
     }},
    {"out", 3, Match::contains,
     [](Parser& parser, const Option&) { parser.next = NextArgument::output_name; }},
    {"rangeA", 6, Match::contains,
     [](Parser& parser, const Option& option) {
       parser.options.add(Operation::range);
       parser.options.range_start = option.real(8);
     }},
    {"rangeB", 6, Match::contains,
     [](Parser& parser, const Option& option) {
       parser.options.range_end_given = true;
       parser.options.range_end = option.real(8);
     }},
    {"r", 1, Match::contains,
     [](Parser& parser, const Option& option) {
       parser.options.add(Operation::remove);
       set_time(parser.options, option.real(3));
     }},
    {"times", 5, Match::contains,
     [](Parser& parser, const Option&) { parser.options.add(Operation::times); }},
    {"path", 4, Match::contains,
     [](Parser& parser, const Option& option) {
       parser.options.dataset_path = REMOVEQUOTES(option.from_column(6));
     }},
    {"type", 4, Match::equals,
     [](Parser& parser, const Option& option) { set_type(parser.options, option); }},
    {"t", 1, Match::contains,
     [](Parser& parser, const Option& option) { set_time(parser.options, option.real(3)); }},
    {"va", 2, Match::contains,
     [](Parser& parser, const Option& option) {
       set_tagged(parser.options, Operation::va, option);
     }},
    {"xnfo", 4, Match::contains,
     [](Parser& parser, const Option&) { parser.options.add(Operation::xnfo); }},
    {"nowetdry", 8, Match::contains,
     [](Parser& parser, const Option&) { parser.options.no_wet_dry = true; }},
    {"ensight", 8, Match::contains,
     [](Parser& parser, const Option&) { parser.options.add(Operation::ensight); }},
    {"dttol", 5, Match::contains,
     [](Parser& parser, const Option& option) { parser.options.tolerance = option.real(7); }},
    {"s", 1, Match::contains,
     [](Parser& parser, const Option& option) { set_scalar_id(parser.options, option); }},
    {"v", 1, Match::contains,
     [](Parser& parser, const Option& option) { set_vector_id(parser.options, option); }},
    {"ignore_mm", 9, Match::contains,
     [](Parser& parser, const Option&) { parser.options.ignore_stored = true; }},
}};

bool matches(const OptionRow& row, std::string_view option_text) {
  const std::string_view slice = option_text.substr(0, row.slice_width);
  return row.match == Match::equals ? ASAME(slice, row.key) : FLAGEXISTS(slice, row.key);
}

// Where absolute paths begin with "/", a path must not become an option by a slip of the keyboard.
bool is_absolute_path(std::string_view argument) {
  if (argument[0] != '/') return false;
  if (FILE_EXISTS(std::string(argument))) return true;
  const bool is_path_option = UPPERCASE(argument.substr(0, 5)) == "/PATH";
  return !is_path_option && argument.find('/', 1) != std::string_view::npos;
}

bool is_option(std::string_view argument) {
  constexpr std::string_view option_starts = "-/\x96";
  return !argument.empty() && option_starts.find(argument[0]) != std::string_view::npos &&
         !is_absolute_path(argument);
}

void apply_option(Parser& parser, std::string_view argument) {
  const auto row =
      std::find_if(option_table.begin(), option_table.end(),
                   [&](const auto& candidate) { return matches(candidate, argument.substr(1)); });
  if (row == option_table.end()) {
    SAY_APART("ERROR - Incorrect flag specified: " + QUOTED(argument));
    END_WITH_PAUSE();
  }
  row->apply(parser, Option{argument});
}

void take_argument(Parser& parser, std::string_view argument) {
  const NextArgument role = parser.next;
  parser.next = NextArgument::ordinary;
  if (role == NextArgument::output_name) {
    parser.options.output_name = TRIMF(argument);
  } else if (role == NextArgument::mesh_file) {
    parser.options.mesh_file = TRIMF(argument);
  } else if (is_option(argument)) {
    apply_option(parser, argument);
  } else {
    parser.options.inputs.emplace_back(TRIMF(argument));
  }
}

}  // namespace

ParsedArguments PARSE_ARGUMENTS(const std::vector<std::string>& arguments) {
  Parser parser;
  for (const std::string& argument : arguments) {
    take_argument(parser, std::string_view(argument).substr(0, longest_argument));
  }
  return {std::move(parser.options), parser.next == NextArgument::output_name};
}

}  // namespace quillet
