#include "xmdf/xmdf_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

#include "support/console.h"
#include "support/output_unit.h"
#include "support/text.h"
#include "xf/xf_dataset_reader.h"
#include "xmdf/xmdf_headers.h"

namespace quillet {
namespace {

constexpr std::int32_t most_times = 1000;

struct Report {
  XmdfFileHeader& header;
  OutputUnit output;
  XfStatus status;  // of the last failure

  void line(const std::string& text) { output.write(SHOWN(text) + '\n'); }

  void note(const XfStatus& result) {
    if (!result.ok()) status = result;
  }

  void write_times(const XfGroup& group) {
    std::int32_t count = 0;
    note(XF_GET_DATASET_NUM_TIMES(group, count));
    line(fmt::format("Num Times{:>10}", count));
    if (count > most_times) SAY("ERROR - Maximum of 1000 output times for xnfo option.");
    std::vector<double> times;
    note(XF_GET_DATASET_TIMES(group, times));
    times.resize(std::min(times.size(), static_cast<std::size_t>(most_times)));
    for (const double time : times) line(fmt::format("{:15.3f}", time));
  }

  void write_dataset(const std::string& path) {
    line(path);
    XfGroup group;
    const XfStatus opened = XF_OPEN_GROUP(header.file, path, group);
    note(opened);
    if (!opened.ok()) return;
    write_times(group);
    note(XF_CLOSE_GROUP(group));
  }

  void write_section(const std::string& heading, const XmdfDatasetList& datasets) {
    if (datasets.paths.empty()) return;
    line(heading);
    line(fmt::format("Number Datasets: {:>10}", datasets.count));
    for (const std::string& path : datasets.paths) write_dataset(path);
  }
};

}  // namespace

void WRITE_XMDF_REPORT(XmdfFileHeader& header, const std::string& report_name) {
  SAY("Output Text File: " + report_name);
  Report report{header, OutputUnit(report_name), {}};
  report.line(header.file_name);
  SAY("Extracting number of outputs for temporal data in " + QUOTED(header.file_name));
  report.write_section("Vector Datasets", header.vectors);
  report.write_section("Scalar Datasets", header.scalars);
  if (!report.status.ok()) {
    SAY("ERROR - Extracting times [XF_GET_DATASET_TIMES] from xmdf file " + header.file_name);
    SAY_HELP(report.status.reason);
  }
  SAY("Closing output file.");
  report.output.complete();
  SAY("Done");
  std::ignore = XF_CLOSE_FILE(header.file);
}

}  // namespace quillet
