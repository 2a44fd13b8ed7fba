#include "driver/output_naming.h"

#include <string_view>

#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

struct Namer {
  const RunOptions& options;
  OutputNaming naming;

  // Appended to the input's name only; a name that the user chose stands as it is.
  void append(const std::string& suffix) {
    if (!naming.user_named) naming.base_file_name += "(" + suffix + ")";
  }
  void set(const std::string& suffix, const std::string& group, const std::string& dataset) {
    append(suffix);
    naming.group_name = group;
    naming.dataset_name = dataset;
  }
};

// A difference is named after both inputs, without their folders, or by a third name.
void name_difference(Namer& namer, const std::string& group, const std::string& prefix) {
  const auto& inputs = namer.options.inputs;
  const std::string names = FILENAME(inputs[0]) + " - " + FILENAME(inputs[1]);
  if (inputs.size() > 2) {
    if (namer.naming.user_named) {
      SAY_APART(
          "WARNING - More than two files specifed for -dif or -ddur option with -out option.");
      PAUSE();
    }
    namer.naming.base_file_name = FILENAMEPATH(inputs[2]);
  } else if (!namer.naming.user_named) {
    namer.naming.base_file_name = names;
  }
  namer.naming.group_name = group;
  namer.naming.dataset_name = prefix + names;
}

// The name of an unknown type is NUL characters, which no dataset can bear: then the output's name
// stands for it.
std::string range_dataset_name(const RunOptions& options) {
  const std::string_view type_name = options.type_name;
  if (options.type_given) return std::string(TRIMF(type_name.substr(0, type_name.find('\0'))));
  return "Range " + FILENAMEPATH(options.inputs[0]);
}

void name_special(Namer& namer, const std::string& announcement) {
  namer.naming.special_output = true;
  if (!announcement.empty()) SAY(announcement);
}

void name_by_operation(Operation operation, Namer& namer) {
  const RunOptions& options = namer.options;
  const std::string time = AREAL(options.selected_time);
  const std::string& tag = options.operation_tag;
  switch (operation) {
    case Operation::remove:
      return namer.set("r" + time, "Remove", "");
    case Operation::keep:
      return namer.set("k" + time, "Keep", "Keep " + namer.naming.item_name);
    case Operation::con:
      return namer.set("con", "Concatenate", "");
    case Operation::max:
      return namer.set("maxmax", "MaxMax", "Max Value");
    case Operation::min:
      return namer.set("minmin", "MinMin", "Min Value");
    case Operation::range:
      return namer.set("range", "Range", range_dataset_name(options));
    case Operation::dif:
      return name_difference(namer, "Difference", "diff_");
    case Operation::ddur:
      return name_difference(namer, "Duration Difference", "ddur_");
    case Operation::dur:
      return namer.set(tag, "Duration", tag);
    case Operation::trim:
      return namer.set(tag, "Trim", tag);
    case Operation::toi:
      return namer.set("toi", "Time to", "Time to Increase " + AREAL(options.cutoff));
    case Operation::va:
      namer.naming.group_name = "Velocity Angle";
      return;
    case Operation::times:
      if (!namer.naming.user_named) namer.naming.base_file_name = "times.txt";
      return name_special(namer, "");
    case Operation::xnfo:
      return name_special(namer, "");
    case Operation::conv:
      SAY("-conv found, output name based on conversion.");
      return;
    case Operation::ensight:
      return name_special(namer, "-ensight found, output name based on conversion.");
  }
}

}  // namespace

OutputNaming NAME_OUTPUT(Operation operation, RunOptions& options) {
  Namer namer{options, {}};
  namer.naming.user_named = options.output_name.has_value();
  namer.naming.base_file_name = options.output_name.value_or(FILENAMEPATH(options.inputs[0]));
  namer.naming.item_name = FILENAME(options.inputs[0]);
  name_by_operation(operation, namer);
  const bool two_inputs = operation == Operation::dif || operation == Operation::ddur;
  if (two_inputs) options.inputs.resize(2);
  return std::move(namer.naming);
}

}  // namespace quillet
