#include "driver/operation_table.h"

#include <string>

#include "driver/conversion_run.h"
#include "driver/ensight_run.h"
#include "driver/map_runs.h"
#include "driver/time_list_run.h"
#include "driver/velocity_angle_run.h"
#include "driver/xmdf_report_run.h"
#include "operations/difference.h"
#include "operations/duration.h"
#include "operations/extreme.h"
#include "operations/time_selection.h"
#include "operations/trim.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

// Operations over output times, the same whatever the file formats.
template <void (*operation)(OperationJob&)>
void over_times(RunSetup& setup) {
  OperationJob job = OPERATION_JOB(setup);
  operation(job);
}

template <Extreme extreme>
void run_extreme(OperationJob& job) {
  RUN_EXTREME(extreme, job);
}

template <std::size_t column>
void set_cutoff(RunOptions& options, const OptionArgument& argument) {
  options.cutoff = argument.real(column);
}

template <std::size_t column>
void set_tagged_cutoff(RunOptions& options, const OptionArgument& argument) {
  options.operation_tag = argument.tag();
  options.cutoff = argument.real(column);
}

void set_time(RunOptions& options, const OptionArgument& argument) {
  options.time = argument.real(3);
}

void set_range_start(RunOptions& options, const OptionArgument& argument) {
  options.range_start = argument.real(8);
}

void set_range_end(RunOptions& options, const OptionArgument& argument) {
  options.range_end = argument.real(8);
}

void name_maximum(const RunOptions&, OutputNaming& naming) {
  naming.append("maxmax");
  naming.dataset_name = "Max Value";
}

void name_minimum(const RunOptions&, OutputNaming& naming) {
  naming.append("minmin");
  naming.dataset_name = "Min Value";
}

void name_after_tag(const RunOptions& options, OutputNaming& naming) {
  naming.append(options.operation_tag);
  naming.dataset_name = options.operation_tag;
}

void name_difference(const RunOptions& options, OutputNaming& naming) {
  NAME_AFTER_TWO_INPUTS("diff_", options, naming);
}

void name_duration_difference(const RunOptions& options, OutputNaming& naming) {
  NAME_AFTER_TWO_INPUTS("ddur_", options, naming);
}

void name_keep(const RunOptions& options, OutputNaming& naming) {
  naming.append("k" + AREAL(*options.time));
  naming.dataset_name = "Keep " + naming.item_name;
}

void name_remove(const RunOptions& options, OutputNaming& naming) {
  naming.append("r" + AREAL(*options.time));
}

// The name of an unknown type is NUL characters, which no dataset can bear: then the output's name
// stands for it.
void name_range(const RunOptions& options, OutputNaming& naming) {
  naming.append("range");
  const std::string_view type = options.type_name;
  naming.dataset_name = options.type_given ? std::string(TRIMF(type.substr(0, type.find('\0'))))
                                           : "Range " + FILENAMEPATH(options.inputs[0]);
}

void name_concatenation(const RunOptions&, OutputNaming& naming) {
  naming.append("con");
}

void name_time_of_increase(const RunOptions& options, OutputNaming& naming) {
  naming.append("toi");
  naming.dataset_name = "Time to Increase " + AREAL(options.cutoff);
}

void name_time_list(const RunOptions&, OutputNaming& naming) {
  if (!naming.user_named) naming.base_file_name = "times.txt";
}

void name_by_conversion(const RunOptions&, OutputNaming&) {
  SAY("-conv found, output name based on conversion.");
}

void name_by_export(const RunOptions&, OutputNaming&) {
  SAY("-ensight found, output name based on conversion.");
}

constexpr ArrayUse arrays_of_extreme{.result = ResultForm::pairs_with_sources, .file = true};
constexpr ArrayUse arrays_of_passing_on{.step = StepForm::pairs};

constexpr std::array operations{
    OperationRow{
        .flag = "-max",
        .meaning = "maximum",
        .options = {{{.turn = 4, .key = "max"}}},
        .page = "max-min.md",
        .group = "MaxMax",
        .name_output = name_maximum,
        .dataset = DatasetKind::maximum,
        .writes_without_times = true,
        .arrays = arrays_of_extreme,
        .perform = over_times<run_extreme<Extreme::maximum>>,
        .last_words = LastWords::finished,
    },
    OperationRow{
        .flag = "-min",
        .meaning = "minimum",
        .options = {{{.turn = 5, .key = "min"}}},
        .page = "max-min.md",
        .group = "MinMin",
        .name_output = name_minimum,
        .dataset = DatasetKind::minimum,
        .writes_without_times = true,
        .arrays = arrays_of_extreme,
        .no_time_in_xmdf = "ERROR - Min not yet enabled for xmdf files.",
        .perform = over_times<run_extreme<Extreme::minimum>>,
        .last_words = LastWords::finished,
    },
    OperationRow{
        .flag = "-dif",
        .meaning = "difference",
        .options = {{{.turn = 6, .key = "dif"}}},
        .page = "dif.md",
        .inputs = InputCount::two,
        .group = "Difference",
        .name_output = name_difference,
        .dataset_by_time = true,
        .needs_water_levels = true,
        .arrays = {.step = StepForm::components, .second_step = true, .bed = true},
        .perform = over_times<RUN_DIFFERENCE>,
    },
    OperationRow{
        .flag = "-dur",
        .meaning = "duration",
        .options = {{{.turn = 7, .key = "dur", .apply = set_tagged_cutoff<5>}}},
        .page = "durations.md",
        .inputs = InputCount::one,
        .group = "Duration",
        .name_output = name_after_tag,
        .writes_without_times = true,
        .arrays = {.step = StepForm::components,
                   .previous = true,
                   .hours = true,
                   .result = ResultForm::scalar},
        .warning_of_further_inputs = "WARNING - Only one file for -dur option",
        .perform = over_times<RUN_DURATION>,
    },
    // Its users keep an earlier version.
    OperationRow{
        .flag = "-ddur",
        .meaning = "difference in duration",
        .options = {{{.turn = 8, .key = "ddur", .apply = set_cutoff<6>}}},
        .inputs = InputCount::two,
        .needs_time = true,
        .group = "Duration Difference",
        .name_output = name_duration_difference,
        .withdrawn = {"Error - Difference in duration (-ddur) not yet implemented for xmdf files.",
                      "    For .dat files, a previous version of the utility can be used."},
    },
    OperationRow{
        .flag = "-k",
        .meaning = "keep",
        .options = {{{.turn = 12, .key = "k", .apply = set_time}}},
        .page = "time-selection.md",
        .inputs = InputCount::one,
        .group = "Keep",
        .name_output = name_keep,
        .dataset_by_time = true,
        .arrays = arrays_of_passing_on,
        .warning_of_further_inputs = "WARNING - Only one file for -k option",
        .perform = over_times<RUN_KEEP>,
    },
    OperationRow{
        .flag = "-range",
        .meaning = "range",
        .options =
            {{{.turn = 14, .key = "rangeA", .apply = set_range_start},
              {.turn = 15, .key = "rangeB", .chooses_operation = false, .apply = set_range_end}}},
        .page = "time-selection.md",
        .group = "Range",
        .name_output = name_range,
        .arrays = arrays_of_passing_on,
        .warning_of_further_inputs = "WARNING - Only one file for -range option",
        .perform = over_times<RUN_RANGE>,
    },
    OperationRow{
        .flag = "-r",
        .meaning = "remove",
        .options = {{{.turn = 16, .key = "r", .apply = set_time}}},
        .page = "time-selection.md",
        .inputs = InputCount::one,
        .group = "Remove",
        .name_output = name_remove,
        .arrays = arrays_of_passing_on,
        .warning_of_further_inputs = "WARNING - Only one file for -r option",
        .perform = over_times<RUN_REMOVE>,
    },
    OperationRow{
        .flag = "-trim",
        .meaning = "trim",
        .options = {{{.turn = 9, .key = "trim", .apply = set_tagged_cutoff<6>}}},
        .page = "trim.md",
        .inputs = InputCount::one,
        .group = "Trim",
        .name_output = name_after_tag,
        .dataset_by_time = true,
        .arrays = arrays_of_passing_on,
        .warning_of_further_inputs = "WARNING - Only one file for -trim option",
        .perform = over_times<RUN_TRIM>,
    },
    OperationRow{
        .flag = "-times",
        .meaning = "times",
        .options = {{{.turn = 17, .key = "times"}}},
        .page = "time-selection.md",
        .inputs = InputCount::one,
        .name_output = name_time_list,
        .output = OutputKind::text,
        .opens_output_itself = true,
        .warning_of_further_inputs = "WARNING - Only one file for -times option",
        .perform = LIST_TIMES_OF_INPUT,
        .last_words = LastWords::finished,
    },
    OperationRow{
        .flag = "-xnfo",
        .meaning = "XMDF information",
        .options = {{{.turn = 22, .key = "xnfo"}}},
        .page = "xnfo.md",
        .output = OutputKind::text,
        .opens_output_itself = true,
        .selection = XmdfSelection::none,
        .inputs_fit = InputsFit::each_by_itself,
        .perform = REPORT_XMDF_INPUTS,
        .last_words = LastWords::finished,
    },
    OperationRow{
        .flag = "-va",
        .meaning = "velocity angle",
        .options = {{{.turn = 21, .key = "va"}}},
        .page = "va.md",
        .inputs = InputCount::one,
        .group = "Velocity Angle",
        .dataset_by_time = true,
        .opens_output_itself = true,
        .needs_vectors = true,
        .arrays = {.step = StepForm::components},
        .warning_of_further_inputs = "WARNING - Only one file for -va (velocity angle) option",
        .perform = WRITE_VELOCITY_ANGLES,
    },
    OperationRow{
        .flag = "-con",
        .meaning = "concatenate",
        .options = {{{.turn = 3, .key = "con"}}},
        .page = "time-selection.md",
        .inputs = InputCount::two_or_more,
        .group = "Concatenate",
        .name_output = name_concatenation,
        .arrays = arrays_of_passing_on,
        .perform = over_times<RUN_CONCATENATE>,
    },
    OperationRow{
        .flag = "-conv",
        .meaning = "convert",
        .options = {{{.turn = 2, .key = "conv"}}},
        .page = "conv.md",
        .name_output = name_by_conversion,
        .output = OutputKind::conversion,
        .opens_output_itself = true,
        .selection = XmdfSelection::on_request,
        .inputs_fit = InputsFit::each_by_itself,
        .perform = CONVERT_INPUTS,
    },
    OperationRow{
        .flag = "-ensight",
        .meaning = "convert to ensight",
        .options = {{{.turn = 24, .key = "ensight", .slice_width = 8}}},
        .page = "ensight.md",
        .name_output = name_by_export,
        .output = OutputKind::text,
        .opens_output_itself = true,
        .selection = XmdfSelection::on_request,
        .inputs_fit = InputsFit::in_counts,
        .warning_of_dat = "WARNING - Ensight conversion not fully supported for .dat files.",
        .perform = EXPORT_INPUTS_TO_ENSIGHT,
    },
    OperationRow{
        .flag = "-toi",
        .meaning = "time to increase",
        // The slice is wider than the key: "-atoi" is -toi too, its value read from the same
        // column.
        .options = {{{.turn = 10, .key = "toi", .slice_width = 4, .apply = set_cutoff<5>}}},
        .page = "durations.md",
        .group = "Time to",
        .name_output = name_time_of_increase,
        .writes_without_times = true,
        .arrays = {.step = StepForm::components,
                   .previous = true,
                   .initial = true,
                   .hours = true,
                   .result = ResultForm::scalar},
        .warning_of_further_inputs = "WARNING - Only one file for -toi option",
        .perform = over_times<RUN_TIME_OF_INCREASE>,
    },
    OperationRow{
        .flag = "--grid",
        .meaning = "raster",
        .own_option = {"--grid", "<cell size>", "results as a raster, .tif or .asc", SET_CELL_SIZE},
        .page = "grid.md",
        .name_output = NAME_GRID,
        .output = OutputKind::own,
        .opens_output_itself = true,
        .arrays = {.step = StepForm::components},
        .warning_of_further_inputs = "WARNING - Only one file for --grid option",
        .perform = WRITE_GRID,
    },
    OperationRow{
        .flag = "--points",
        .meaning = "time series",
        .own_option = {"--points", "<file.csv>", "time series at the points listed in a file",
                       SET_POINTS_FILE},
        .page = "points.md",
        .name_output = NAME_TIME_SERIES,
        .output = OutputKind::own,
        .opens_output_itself = true,
        .arrays = {.step = StepForm::components},
        .warning_of_further_inputs = "WARNING - Only one file for --points option",
        .perform = WRITE_TIME_SERIES,
    },
};

}  // namespace

std::span<const OperationRow> OPERATIONS() {
  return operations;
}

}  // namespace quillet
