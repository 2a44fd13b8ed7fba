#include "driver/xmdf_inputs.h"

#include <algorithm>

#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"
#include "xmdf/xmdf_headers.h"
#include "xmdf/xmdf_type_search.h"
#include "xmdf/xmdf_values.h"

namespace quillet {
namespace {

// The ids of -s and -v count through the lists that the console shows.
void select_by_id(RunSetup& setup, bool vectors, std::int32_t id) {
  const std::string kind = vectors ? "vector" : "scalar";
  for (XmdfFileHeader& header : setup.xmdf_files) {
    const XmdfDatasetList& datasets = vectors ? header.vectors : header.scalars;
    if (!SELECT_XMDF_DATASET(header, vectors, id)) {
      SAY_APART("ERROR - Specifed " + kind + " dataset does not exist.");
      SAY("   Maximum " + kind + " ID = " + AINTEGER(datasets.count));
      EXITS();
    }
    // The same words for vectors.
    SAY_APART("Using specifed scalar dataset: " + datasets.path(id));
  }
}

// A dataset of times of peak has one output, at time 0, and no maximum of its own.
void ask_peaks_for_time_zero(RunSetup& setup) {
  const bool has_peak =
      std::any_of(setup.xmdf_files.begin(), setup.xmdf_files.end(), IS_XMDF_PEAK_TIME);
  if (!has_peak || setup.time != stored_maximum_time) return;
  SAY("Maximum timestep does not exist for Time of Peak datasets, using time 0");
  setup.time = 0;
}

void search(RunSetup& setup) {
  const RunOptions& options = setup.options;
  SAY("Searching for specified data type in .xmdf files.");
  if (options.vector_id) {
    select_by_id(setup, true, *options.vector_id);
  } else if (options.scalar_id) {
    select_by_id(setup, false, *options.scalar_id);
  } else if (options.dataset_path) {
    FindXmdfType(setup.xmdf_files, *options.dataset_path, true);
  } else {
    FindXmdfType(setup.xmdf_files, options.type_name, false);
  }
  ask_peaks_for_time_zero(setup);
}

// What stands in the paths of all that the run will open; nothing where that is not known yet.
std::vector<std::string> words_of_wanted(const RunSetup& setup) {
  const RunOptions& options = setup.options;
  const bool is_known = options.type_name.find('\0') == std::string::npos;
  const bool looks_for_type = setup.operation.selection != XmdfSelection::none &&
                              options.type_given && !options.selects_by_itself();
  if (!looks_for_type || !is_known) return {};
  std::vector<std::string> words{options.type_name};
  if (setup.operation.needs_water_levels && setup.wet_dry_test) words.emplace_back("Water Level");
  return words;
}

void read_times(RunSetup& setup) {
  for (XmdfFileHeader& header : setup.xmdf_files) {
    ReadXmdfTimeCount(header);
    SAY("Allocating arrays for storing time information from .xmdf file: " + header.file_name);
    ReadXmdfTimes(header);
  }
}

}  // namespace

void OPEN_XMDF_INPUTS(RunSetup& setup) {
  for (std::size_t input = 0; input < setup.input_kinds.size(); ++input) {
    if (setup.input_kinds[input] != FileKind::xmdf) continue;
    setup.xmdf_files.emplace_back().file_name = setup.input_names[input];
  }
  if (setup.xmdf_files.empty()) return;
  ReadXmdfHeaders(setup.xmdf_files, words_of_wanted(setup));
  setup.inputs.choose_output_time = [&files = setup.xmdf_files](float time, float tolerance) {
    FindXmdfTime(files, time, tolerance);
  };
}

void CHOOSE_XMDF_DATASETS(RunSetup& setup) {
  if (setup.xmdf_files.empty()) return;
  for (const XmdfFileHeader& header : setup.xmdf_files) {
    SAY("Allocating arrays for storing path information from .xmdf file: " + header.file_name);
  }
  ReadXmdfDatasetNames(setup.xmdf_files);
  ReadXmdfSizes(setup.xmdf_files);
  const bool chooses = setup.options.selects_dataset();
  if (chooses) search(setup);
  for (XmdfFileHeader& header : setup.xmdf_files) READ_XMDF_CHOSEN_CELL_COUNT(header);
  if (chooses) read_times(setup);
}

}  // namespace quillet
