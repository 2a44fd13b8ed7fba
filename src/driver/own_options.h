// The options that begin with two dashes: exact names in lower case, a value after "=". Those with
// one dash are as users' scripts have them, for ever; whatever is new becomes one of these.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "driver/run_options.h"

namespace quillet {

struct OwnOptionRow {
  std::string_view name;     // "--threads"
  std::string_view value{};  // as the help shows it, "<number>"; empty: it takes none
  std::string_view meaning{};
  // False for a value that cannot be used.
  bool (*apply)(RunOptions& options, std::string_view value) = nullptr;
};

// Those that belong to no operation, in the order of the help.
std::span<const OwnOptionRow> OWN_OPTIONS();

// Two dashes make an option one of ours, known or not.
bool IS_OWN_OPTION(std::string_view argument);

// Applies an option of ours; false when there is no such option. A value that is missing, not
// wanted or out of range ends the run. When the option is an operation's, the operation is chosen.
bool APPLY_OWN_OPTION(std::string_view argument, RunOptions& options);

// What must be known before anything else is parsed.
struct EarlyOptions {
  bool help = false;
  bool version = false;
  bool strict = false;
};

// They count wherever they stand, unless they are the value of -out or -2dm.
EarlyOptions FIND_EARLY_OPTIONS(const std::vector<std::string>& arguments);

}  // namespace quillet
