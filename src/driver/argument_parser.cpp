#include "driver/argument_parser.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

#include "driver/operation_table.h"
#include "driver/option_row.h"
#include "driver/own_options.h"
#include "results/result_types.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::size_t longest_argument = 1000;
constexpr std::size_t longest_type_code = 4;

void set_type(RunOptions& options, const OptionArgument& argument) {
  options.type_given = true;
  options.type_code = TRIMF(argument.from_column(6).substr(0, longest_type_code));
  if (!LOOK_UP_TYPE_NAME(options.type_code, options.type_name)) {
    SAY("WARNING - Unknown result type: " + QUOTED(options.type_code));
  }
  if (BLANK(options.type_name)) {
    FAIL_RUN("ERROR - Unable to interpret Map Output Data Type: " + QUOTED(options.type_code));
  }
}

void set_scalar_id(RunOptions& options, const OptionArgument& argument) {
  if (options.scalar_id) {
    FAIL_RUN("ERROR - Only one scalar dataset can be specified with \"-s\" option..");
  }
  options.scalar_id = argument.integer(3);
}

void set_vector_id(RunOptions& options, const OptionArgument& argument) {
  if (options.vector_id) {
    FAIL_RUN("ERROR - Only one vector dataset can be specified with \"-v\" option..");
  }
  options.vector_id = argument.integer(3);
}

void set_path(RunOptions& options, const OptionArgument& argument) {
  options.dataset_path = REMOVEQUOTES(argument.from_column(6));
}

void set_time(RunOptions& options, const OptionArgument& argument) {
  options.time = argument.real(3);
}

void set_tolerance(RunOptions& options, const OptionArgument& argument) {
  options.tolerance = argument.real(7);
}

void set_batch(RunOptions& options, const OptionArgument&) {
  options.batch = true;
}

void set_no_wet_dry(RunOptions& options, const OptionArgument&) {
  options.no_wet_dry = true;
}

void set_ignore_stored(RunOptions& options, const OptionArgument&) {
  options.ignore_stored = true;
}

// The options that are no operations. Those stand with theirs.
constexpr std::array general_options{
    OptionRow{.turn = 1, .key = "2dm", .match = Match::equals, .next = NextArgument::mesh_file},
    OptionRow{.turn = 11, .key = "b", .apply = set_batch},
    OptionRow{.turn = 13, .key = "out", .next = NextArgument::output_name},
    OptionRow{.turn = 18, .key = "path", .apply = set_path},
    OptionRow{.turn = 19, .key = "type", .match = Match::equals, .apply = set_type},
    OptionRow{.turn = 20, .key = "t", .apply = set_time},
    OptionRow{.turn = 23, .key = "nowetdry", .apply = set_no_wet_dry},
    OptionRow{.turn = 25, .key = "dttol", .apply = set_tolerance},
    OptionRow{.turn = 26, .key = "s", .apply = set_scalar_id},
    OptionRow{.turn = 27, .key = "v", .apply = set_vector_id},
    OptionRow{.turn = 28, .key = "ignore_mm", .apply = set_ignore_stored},
};

// An option, and the operation that it chooses.
struct FoundOption {
  const OptionRow* row = nullptr;
  const OperationRow* operation = nullptr;

  void consider(const OptionRow& other, const OperationRow* other_operation,
                std::string_view text_after_dash) {
    const bool is_earlier = row == nullptr || other.turn < row->turn;
    if (other.key.empty() || !is_earlier || !other.matches(text_after_dash)) return;
    row = &other;
    operation = other.chooses_operation ? other_operation : nullptr;
  }
};

FoundOption find_option(std::string_view text_after_dash) {
  FoundOption found;
  for (const OptionRow& row : general_options) found.consider(row, nullptr, text_after_dash);
  for (const OperationRow& operation : OPERATIONS()) {
    for (const OptionRow& row : operation.options) {
      found.consider(row, &operation, text_after_dash);
    }
  }
  return found;
}

struct Parser {
  RunOptions options;
  NextArgument next = NextArgument::ordinary;
};

// Where absolute paths begin with "/", a path must not become an option by a slip of the keyboard.
bool is_absolute_path(std::string_view argument) {
  if (std::filesystem::path::preferred_separator != '/' || argument[0] != '/') return false;
  if (FILE_EXISTS(std::string(argument))) return true;
  const bool is_path_option = UPPERCASE(argument.substr(0, 5)) == "/PATH";
  return !is_path_option && argument.find('/', 1) != std::string_view::npos;
}

// Bytes of what makes the argument an option; 0 when it is none. An en dash is one byte in
// Windows-1252 and three in UTF-8.
std::size_t dash_size(std::string_view argument) {
  constexpr std::string_view one_byte_dashes = "-/\x96";
  constexpr std::string_view en_dash = "\xE2\x80\x93";
  if (argument.starts_with(en_dash)) return en_dash.size();
  const bool is_option = !argument.empty() &&
                         one_byte_dashes.find(argument[0]) != std::string_view::npos &&
                         !is_absolute_path(argument);
  return is_option ? 1 : 0;
}

[[noreturn]] void fail_on_flag(std::string_view argument) {
  SAY_APART("ERROR - Incorrect flag specified: " + QUOTED(argument));
  SAY_HELP("quillet --help shows all options.");
  END_WITH_PAUSE();
}

void apply_option(Parser& parser, const OptionArgument& option) {
  if (IS_OWN_OPTION(option.argument)) {
    if (!APPLY_OWN_OPTION(option.argument, parser.options)) fail_on_flag(option.argument);
    return;
  }
  const FoundOption found = find_option(option.from_column(2));
  if (found.row == nullptr) fail_on_flag(option.argument);
  if (found.operation != nullptr) parser.options.choose(*found.operation);
  parser.next = found.row->next;
  if (found.row->apply != nullptr) found.row->apply(parser.options, option);
}

void take_argument(Parser& parser, std::string_view argument) {
  const NextArgument role = parser.next;
  parser.next = NextArgument::ordinary;
  if (role == NextArgument::output_name) {
    parser.options.output_name = TRIMF(argument);
  } else if (role == NextArgument::mesh_file) {
    parser.options.mesh_file = TRIMF(argument);
  } else if (const std::size_t size = dash_size(argument); size > 0) {
    apply_option(parser, {argument, size});
  } else {
    parser.options.inputs.emplace_back(TRIMF(argument));
  }
}

}  // namespace

bool TAKES_NEXT_ARGUMENT(std::string_view argument) {
  const std::size_t size = dash_size(argument);
  if (size == 0 || IS_OWN_OPTION(argument)) return false;
  const FoundOption found = find_option(argument.substr(size));
  return found.row != nullptr && found.row->next != NextArgument::ordinary;
}

RunOptions PARSE_ARGUMENTS(const std::vector<std::string>& arguments) {
  Parser parser;
  for (const std::string& argument : arguments) {
    take_argument(parser, std::string_view(argument).substr(0, longest_argument));
  }
  parser.options.output_name_missing = parser.next == NextArgument::output_name;
  return std::move(parser.options);
}

}  // namespace quillet
