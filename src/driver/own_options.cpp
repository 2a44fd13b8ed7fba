#include "driver/own_options.h"

#include <array>
#include <charconv>
#include <optional>
#include <system_error>

#include "driver/argument_parser.h"
#include "driver/operation_table.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::string_view help_option = "--help";
constexpr std::string_view version_option = "--version";
constexpr std::string_view strict_option = "--strict";

bool note_nothing(RunOptions&, std::string_view) {
  return true;  // found before the command line is parsed
}

bool set_strict(RunOptions& options, std::string_view) {
  options.batch = true;
  return true;
}

bool set_progress(RunOptions& options, std::string_view) {
  options.progress = true;
  return true;
}

bool set_no_progress(RunOptions& options, std::string_view) {
  options.progress = false;
  return true;
}

bool set_summary(RunOptions& options, std::string_view) {
  options.summary = true;
  return true;
}

bool set_threads(RunOptions& options, std::string_view value) {
  constexpr int most = 1024;
  int count = 0;
  const auto [end, error] = std::from_chars(value.begin(), value.end(), count);
  if (error != std::errc{} || end != value.end() || count < 1 || count > most) return false;
  options.threads = count;
  return true;
}

// The codes of projected systems that a GeoTIFF can state.
bool set_coordinate_system(RunOptions& options, std::string_view value) {
  constexpr std::int32_t first = 1024;
  constexpr std::int32_t last = 32766;
  const std::optional<std::int32_t> code = READ_INTEGER(value);
  if (!READ_WHOLE_DOUBLE(value) || !code || *code < first || *code > last) return false;
  options.coordinate_system = code;
  return true;
}

constexpr std::array own_options{
    OwnOptionRow{help_option, "", "shows this help", note_nothing},
    OwnOptionRow{version_option, "", "shows the version", note_nothing},
    OwnOptionRow{strict_option, "",
                 "for scripts: as -b, never waits or reads standard input, exit status 1 after an "
                 "error",
                 set_strict},
    OwnOptionRow{"--progress", "", "shows on standard error how far the run is", set_progress},
    OwnOptionRow{"--no-progress", "", "does not, on a terminal either", set_no_progress},
    OwnOptionRow{"--summary", "", "says at the end, on standard error, what the run did",
                 set_summary},
    OwnOptionRow{"--threads", "<number>",
                 "how many threads share the work (default: what the process may use, at most 8)",
                 set_threads},
    OwnOptionRow{"--epsg", "<code>", "states the projected coordinate system of a raster",
                 set_coordinate_system},
};

// "--threads=4" is "--threads" and "4"; without "=" there is no value, not even an empty one.
struct OwnArgument {
  std::string_view name;
  std::optional<std::string_view> value;
};

OwnArgument split(std::string_view argument) {
  const auto equals = argument.find('=');
  if (equals == std::string_view::npos) return {argument, std::nullopt};
  return {argument.substr(0, equals), argument.substr(equals + 1)};
}

[[noreturn]] void fail_on_value(std::string_view argument) {
  SAY_APART("ERROR - Reading value of option: " + QUOTED(argument));
  END_WITH_PAUSE();
}

void apply(const OwnOptionRow& row, const OwnArgument& parts, std::string_view argument,
           RunOptions& options) {
  const bool takes_value = !row.value.empty();
  const bool has_value = parts.value && !parts.value->empty();
  if (takes_value ? !has_value : parts.value.has_value()) fail_on_value(argument);
  if (row.apply != nullptr && !row.apply(options, parts.value.value_or(""))) {
    fail_on_value(argument);
  }
}

}  // namespace

std::span<const OwnOptionRow> OWN_OPTIONS() {
  return own_options;
}

bool IS_OWN_OPTION(std::string_view argument) {
  return argument.starts_with("--");
}

bool APPLY_OWN_OPTION(std::string_view argument, RunOptions& options) {
  const OwnArgument parts = split(argument);
  for (const OwnOptionRow& row : own_options) {
    if (row.name != parts.name) continue;
    apply(row, parts, argument, options);
    return true;
  }
  for (const OperationRow& operation : OPERATIONS()) {
    if (operation.own_option.name.empty() || operation.own_option.name != parts.name) continue;
    options.choose(operation);
    apply(operation.own_option, parts, argument, options);
    return true;
  }
  return false;
}

EarlyOptions FIND_EARLY_OPTIONS(const std::vector<std::string>& arguments) {
  EarlyOptions early;
  bool is_value = false;  // of -out or -2dm, as the parser takes them
  for (const std::string& argument : arguments) {
    const bool is_taken = is_value;
    is_value = !is_taken && TAKES_NEXT_ARGUMENT(argument);
    if (is_taken) continue;
    early.help = early.help || argument == help_option;
    early.version = early.version || argument == version_option;
    early.strict = early.strict || argument == strict_option;
  }
  return early;
}

}  // namespace quillet
