// What was read of one XMDF input before its values, and which datasets of it were selected.
// Positions in lists count from 1; 0 means none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "results/result_source.h"
#include "xf/xf_file.h"

namespace quillet {

// A path is split at its first and last "/": run1/Maximums/Depth.
struct XmdfPath {
  std::string group;
  std::string folder;
  std::string dataset;
};

// A dataset of the folder Times with the depth (metres) that its name states.
struct XmdfTimesOutput {
  std::int32_t path = 0;
  float cutoff = 0;
};

enum class PeakKind { level, velocity };

struct XmdfPeakOutput {
  std::int32_t path = 0;
  PeakKind kind = PeakKind::level;
};

// The scalar datasets of a file, or its vector datasets.
struct XmdfDatasetList {
  std::int32_t count = 0;
  std::int32_t longest_path = 0;  // characters
  std::vector<std::string> paths;
  std::vector<XmdfPath> split_paths;

  // Outputs of the folder Times.
  std::vector<XmdfTimesOutput> time_outputs;      // when a depth was first exceeded
  std::vector<XmdfTimesOutput> duration_outputs;  // how long it was exceeded
  std::vector<XmdfPeakOutput> peak_outputs;

  // Of the requested type, by folder.
  std::int32_t maximums = 0;
  std::int32_t minimums = 0;
  std::int32_t temporal = 0;
  std::int32_t times = 0;
  // The dataset that was named by its position or its path.
  std::int32_t selected = 0;

  bool found() const { return maximums + minimums + temporal + times + selected > 0; }
  const std::string& path(std::int32_t position) const {
    return paths[static_cast<std::size_t>(position) - 1];
  }
  void clear_selection() { maximums = minimums = temporal = times = selected = 0; }
};

struct XmdfFileHeader {
  std::string file_name;
  XfFile file;                             // open for the whole run
  std::int32_t node_count = 0;             // values per output time
  std::optional<std::int32_t> cell_count;  // activity flags per output time, if any
  std::string time_units;                  // as the file states them; times are taken to be hours
  XmdfDatasetList scalars;
  XmdfDatasetList vectors;

  std::vector<double> times;  // hours, of the Temporal dataset

  // Where scalars and vectors both have the requested type, the vectors are used, and they alone.
  bool uses_vectors() const { return vectors.found(); }
  const XmdfDatasetList& datasets() const { return uses_vectors() ? vectors : scalars; }
  XmdfDatasetList& datasets() { return uses_vectors() ? vectors : scalars; }
};

// Ends the run: the text, with the file's name where it ends in a blank; below it the file, the
// dataset and what was expected and found, then what may help unless that is empty.
[[noreturn]] void FAIL_XMDF(std::string_view text, const std::string& file_name,
                            const std::string& path, const XfStatus& status,
                            const std::string& suggestion = "");

// Ends the run: nothing of the file was selected that could be read.
[[noreturn]] void FAIL_NOTHING_SELECTED(const XmdfFileHeader& header);

// Closes a file that was read. Nothing of it is lost when that fails.
void CLOSE_XMDF_INPUT(XmdfFileHeader& header);

}  // namespace quillet
