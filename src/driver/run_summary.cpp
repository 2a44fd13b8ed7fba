#include "driver/run_summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "results/written_values.h"
#include "support/numbers.h"
#include "support/run_tally.h"
#include "support/text.h"

namespace quillet {
namespace {

struct Lines {
  std::string text;

  void add(std::string_view label, const std::string& value) {
    text += fmt::format("{:<20}{}\n", label, value);
  }
};

std::string size_text(const std::string& file_name) {
  std::error_code error;
  const auto size = std::filesystem::file_size(file_name, error);
  return error ? "" : fmt::format(" ({} bytes)", size);
}

void add_files(Lines& lines, std::string_view label, const std::vector<std::string>& names) {
  for (const std::string& name : names) lines.add(label, name + size_text(name));
}

void add_values(Lines& lines) {
  const WrittenValues& written = WRITTEN_VALUES();
  if (!(written.smallest <= written.largest)) return;
  lines.add("Values written", AREAL(written.smallest) + " to " + AREAL(written.largest));
  if (written.largest_place == 0) return;
  lines.add("Largest value", fmt::format("{} {}, time {}", written.are_of_cells ? "cell" : "node",
                                         written.largest_place, AREAL(written.largest_time)));
  lines.add("Wet cells at most",
            fmt::format("{} of {}", written.most_wet_cells, written.cell_count));
}

}  // namespace

std::string RUN_SUMMARY(const RequestedRun& run, double seconds) {
  const RunTally& tally = RUN_TALLY();
  Lines lines;
  lines.add("Operation", run.operation.empty() ? "none" : run.operation);
  add_files(lines, "Input", run.inputs);
  add_files(lines, "Output", tally.completed_outputs);
  if (tally.completed_outputs.empty()) lines.add("Output", "none");
  lines.add("Output times",
            fmt::format("{} read, {} written", tally.times_read, tally.times_written));
  add_values(lines);
  lines.add("Errors, warnings", fmt::format("{}, {}", tally.errors, tally.warnings));
  const double bytes = static_cast<double>(tally.bytes_read);
  lines.add("Time",
            fmt::format("{:.3f} s, {:.0f} MB/s", seconds, bytes / 1e6 / std::max(seconds, 1e-6)));
  return lines.text;
}

}  // namespace quillet
