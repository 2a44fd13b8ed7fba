// What the operations are: one row each. The command line and the set-up ask the row; nothing else
// tells one operation from another.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "driver/option_row.h"
#include "driver/output_naming.h"
#include "driver/own_options.h"
#include "driver/run_options.h"
#include "operations/work_arrays.h"
#include "results/dataset_kind.h"

namespace quillet {

struct RunSetup;

// How many inputs are accepted.
enum class InputCount {
  one,
  two,  // and the name of the output as a third
  two_or_more,
  any,
};

// How the inputs must agree.
enum class InputsFit {
  in_shape,        // counts, and all scalar or all vector
  in_counts,       // numbers of nodes and cells
  each_by_itself,  // not at all
};

// What is read of an XMDF input.
enum class XmdfSelection {
  one_dataset,  // the user must select one
  on_request,   // everything, unless the user selects
  none,         // the operation looks at the file itself: the set-up ends before it reads headers
};

// Which kind of file the output is.
enum class OutputKind {
  results,     // .dat or XMDF, as the inputs and -out say
  text,        // .txt
  conversion,  // by input; what -out says is told all the same
  own,         // the operation's own affair
};

// What is said after the operation: nothing, or "Finished.", which makes the run end in another
// way.
enum class LastWords { none, finished };

struct OperationRow {
  // The command line.
  std::string_view flag;               // as the report names the operation
  std::string_view meaning;            // likewise
  std::array<OptionRow, 2> options{};  // the second is seldom there
  OwnOptionRow own_option{};           // of an operation that has one with two dashes instead
  std::string_view page{};             // of the manual, in docs/operations
  InputCount inputs = InputCount::any;
  bool needs_time = false;  // -t

  // The output.
  std::string_view group{};  // in an XMDF output
  // Sets the dataset's name and, unless the user named it, the file's; may speak.
  void (*name_output)(const RunOptions& options, OutputNaming& naming) = nullptr;
  OutputKind output = OutputKind::results;
  DatasetKind dataset = DatasetKind::series;
  bool dataset_by_time = false;       // a stored extreme where one is asked for by its time
  bool writes_without_times = false;  // a map, even when no input has an output time
  bool opens_output_itself = false;   // when it is performed, not in the set-up

  // The inputs.
  XmdfSelection selection = XmdfSelection::one_dataset;
  InputsFit inputs_fit = InputsFit::in_shape;
  bool needs_vectors = false;
  bool needs_water_levels = false;  // for the wet/dry test
  ArrayUse arrays{};

  // What is said when something is asked for that the operation does not do; empty: it does.
  std::array<std::string_view, 2> withdrawn{};   // the operation is no longer there at all
  std::string_view no_time_in_xmdf{};            // ends a run with -t and XMDF inputs
  std::string_view warning_of_dat{};             // with .dat inputs
  std::string_view warning_of_further_inputs{};  // with more than one input: the first is used

  void (*perform)(RunSetup& setup) = nullptr;
  LastWords last_words = LastWords::none;
};

// In the order in which operations are reported.
std::span<const OperationRow> OPERATIONS();

}  // namespace quillet
