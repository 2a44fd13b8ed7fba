#include "xmdf/xmdf_headers.h"

#include <fmt/format.h>

#include <functional>
#include <string_view>
#include <tuple>

#include "support/close_names.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"
#include "xf/xf_dataset_reader.h"
#include "xf/xf_trial.h"
#include "xmdf/xmdf_times_outputs.h"

namespace quillet {
namespace {

// Tells of each file whether it may be opened, up to the first that may not.
std::vector<XfStatus> try_files(const std::vector<XmdfFileHeader>& files,
                                const XfTrialScope& scope) {
  std::vector<std::string> names;
  names.reserve(files.size());
  for (const XmdfFileHeader& header : files) names.push_back(header.file_name);
  std::vector<XfStatus> tried = XF_TRY_FILES(names, scope);
  END_IF_INTERRUPTED();
  return tried;
}

void open_file(XmdfFileHeader& header, const XfStatus& tried, const XfTrialScope& scope) {
  SAY("Opening XMDF file " + QUOTED(header.file_name));
  if (!tried.ok()) FAIL_READING(header.file_name, tried.reason);
  const XfStatus status = XF_OPEN_FILE(header.file_name, header.file, scope);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Could not open XMDF file " + QUOTED(header.file_name), header.file_name, "",
              status, CLOSE_NAMES_QUESTION(header.file_name));
  }
  SAY("Done.");
}

void read_version(XmdfFileHeader& header) {
  float version = 0;
  const XfStatus status = XF_GET_LIBRARY_VERSION_FILE(header.file, version);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Determining XMDF Library Version.", header.file_name, "", status);
  }
  SAY("XMDF Version: " + AREAL(version));
}

using GetDatasetsInfo = XfStatus (*)(const XfFile&, XfDatasetsInfo&);

void read_counts(const XmdfFileHeader& header, const std::string& kind, GetDatasetsInfo get,
                 XmdfDatasetList& datasets) {
  SAY("Getting " + kind + " dataset information");
  XfDatasetsInfo info;
  const XfStatus status = get(header.file, info);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Getting " + kind + " data set information.", header.file_name, "", status);
  }
  if (info.count < 1) {
    SAY("Warning - Number of " + kind + " paths less than or equal to zero.");
  }
  datasets.count = info.count;
  datasets.longest_path = info.longest_path;
  // The label says "scalar" for vectors too; see docs/compatibility.md.
  SAY("Number of scalar datasets: " + AINTEGER(info.count));
  SAY("Maximum character length of dataset names: " + AINTEGER(info.longest_path));
}

XmdfPath split(const std::string& path) {
  const auto first = path.find('/');
  const auto last = path.rfind('/');
  if (first == std::string::npos) return {"", "", path};
  const std::string folder = first == last ? "" : path.substr(first + 1, last - first - 1);
  return {path.substr(0, first), folder, path.substr(last + 1)};
}

struct ListTexts {
  std::string_view heading;
  std::string_view failure;
};

using GetDatasetPaths = XfStatus (*)(const XfFile&, std::vector<std::string>&);

void read_paths(const XmdfFileHeader& header, const ListTexts& texts, GetDatasetPaths get,
                XmdfDatasetList& datasets) {
  if (datasets.count < 1) return;
  const XfStatus status = get(header.file, datasets.paths);
  if (!status.ok()) FAIL_XMDF(texts.failure, header.file_name, "", status);
  SAY(texts.heading);
  for (const std::string& path : datasets.paths) {
    datasets.split_paths.push_back(split(path));
    SAY(fmt::format("{:5} {}", datasets.split_paths.size(), path));
  }
  CLASSIFY_TIMES_OUTPUTS(datasets);
}

// The groups that tell the sizes of a file: its first scalar and its first vector dataset.
struct SizeGroups {
  XfGroup scalar;
  XfGroup vector;
};

std::string first_path(const XmdfDatasetList& datasets) {
  return datasets.paths.empty() ? "" : datasets.paths.front();
}

bool open_first(const XfFile& file, const XmdfDatasetList& datasets, XfGroup& group) {
  return !datasets.paths.empty() && XF_OPEN_GROUP(file, datasets.paths.front(), group).ok();
}

SizeGroups open_size_groups(const XmdfFileHeader& header) {
  SizeGroups groups;
  const bool has_scalar = open_first(header.file, header.scalars, groups.scalar);
  const bool has_vector = open_first(header.file, header.vectors, groups.vector);
  const auto message = [](const std::string& path) {
    return " - Could not open data group " + QUOTED(path) + " in XMDF file.";
  };
  const std::string scalar_path = first_path(header.scalars);
  const std::string vector_path = first_path(header.vectors);
  if (!has_scalar && !has_vector) {
    FAIL_RUN("ERROR" + message(scalar_path.empty() ? vector_path : scalar_path),
             QUOTED(header.file_name));
  }
  if (!has_scalar && !scalar_path.empty()) SAY("WARNING" + message(scalar_path));
  if (!has_vector && !vector_path.empty()) SAY("WARNING" + message(vector_path));
  return groups;
}

// Asks the scalar group, then the vector group. The failure is that of the last one asked.
void ask_groups(const XmdfFileHeader& header, const SizeGroups& groups,
                const std::function<XfStatus(const XfGroup&)>& ask, std::string_view what,
                std::string_view failure) {
  XfStatus status = groups.scalar ? ask(groups.scalar) : XF_FAILURE("no scalar dataset");
  if (status.ok()) return;
  SAY("WARNING - Could not extract " + std::string(what) +
      " from scalar data group.. trying vector data group.");
  if (groups.vector) status = ask(groups.vector);
  if (status.ok()) return;
  const std::string path = first_path(groups.vector ? header.vectors : header.scalars);
  FAIL_XMDF(failure, header.file_name, path, status);
}

bool is_hours(const std::string& units) {
  const std::string_view text = TRIM_BOTH(units);
  return !text.empty() && (text.front() == 'h' || text.front() == 'H');
}

void read_sizes(XmdfFileHeader& header) {
  const SizeGroups groups = open_size_groups(header);
  ask_groups(
      header, groups,
      [&](const XfGroup& group) { return XF_GET_DATASET_NUMVALS(group, header.node_count); },
      "nodes", "ERROR - Exracting Number of Values in Dataset [XF_GET_DATASET_NUMVALS].");
  SAY("Number of nodes: " + AINTEGER(header.node_count));

  std::int32_t cell_count = 0;
  ask_groups(
      header, groups,
      [&](const XfGroup& group) { return XF_GET_DATASET_NUMACTIVE(group, cell_count); },
      "number of cells", "ERROR - Exracting Number Active in Dataset [XF_GET_DATASET_NUMACTIVE].");
  SAY("Number of cells: " + AINTEGER(cell_count));
  if (cell_count != 0) header.cell_count = cell_count;

  ask_groups(
      header, groups,
      [&](const XfGroup& group) { return XF_GET_DATASET_TIME_UNITS(group, header.time_units); },
      "Time Unit Dataset", "ERROR - Exracting Time Unit Dataset [XF_GET_DATASET_TIME_UNITS].");
  SAY("Time Units: " + header.time_units);
  if (!is_hours(header.time_units)) SAY("WARNING - Times are taken to be hours.");
}

// The chosen datasets, or all where none was chosen.
std::vector<std::string> paths_to_read(const XmdfFileHeader& header) {
  const XmdfDatasetList& chosen = header.datasets();
  std::vector<std::string> paths;
  for (const std::int32_t position :
       {chosen.temporal, chosen.maximums, chosen.minimums, chosen.times}) {
    if (position != 0) paths.push_back(chosen.path(position));
  }
  if (chosen.found()) return paths;
  for (const XmdfDatasetList* const datasets : {&header.scalars, &header.vectors}) {
    paths.insert(paths.end(), datasets->paths.begin(), datasets->paths.end());
  }
  return paths;
}

}  // namespace

void ReadXmdfHeaders(std::vector<XmdfFileHeader>& files, const std::vector<std::string>& words) {
  SAY("Opening all .xmdf files to extract header information.");
  const XfTrialScope scope{words};
  const std::vector<XfStatus> tried = try_files(files, scope);
  for (std::size_t i = 0; i < files.size(); ++i) {
    XmdfFileHeader& header = files[i];
    open_file(header, tried[i], scope);
    read_version(header);
    SAY("Extracting filepath information for array allocation...");
    read_counts(header, "scalar", XF_GET_SCALAR_DATASETS_INFO, header.scalars);
    read_counts(header, "vector", XF_GET_VECTOR_DATASETS_INFO, header.vectors);
  }
}

void ReadXmdfDatasetNames(std::vector<XmdfFileHeader>& files) {
  for (XmdfFileHeader& header : files) {
    SAY("Getting dataset names from XMDF file " + QUOTED(header.file_name));
    read_paths(header,
               {"Scalar datasets available:",
                "ERROR - Exracting Scalar Dataset Paths [XF_GET_SCALAR_DATASET_PATHS]."},
               XF_GET_SCALAR_DATASET_PATHS, header.scalars);
    read_paths(header,
               {"Vector datasets available:",
                "ERROR - Exracting Vector Dataset Paths [XF_GET_VECTOR_DATASET_PATHS]."},
               XF_GET_VECTOR_DATASET_PATHS, header.vectors);
  }
}

void ReadXmdfSizes(std::vector<XmdfFileHeader>& files) {
  for (XmdfFileHeader& header : files) {
    SAY("Getting time units, number of cells and nodes from XMDF file " + QUOTED(header.file_name));
    read_sizes(header);
  }
}

void READ_XMDF_CHOSEN_CELL_COUNT(XmdfFileHeader& header) {
  for (const std::string& path : paths_to_read(header)) {
    if (header.cell_count) return;
    XfGroup group;
    std::int32_t count = 0;
    const bool tells = XF_OPEN_GROUP(header.file, path, group).ok() &&
                       XF_GET_DATASET_NUMACTIVE(group, count).ok() && count > 0;
    if (!tells) continue;
    header.cell_count = count;
    SAY("Number of cells: " + AINTEGER(count));
  }
}

void ReadXmdfTimeCount(XmdfFileHeader& header) {
  const XmdfDatasetList& datasets = header.datasets();
  if (datasets.temporal == 0) return;
  SAY("Extracting number of outputs for temporal data in " + QUOTED(header.file_name));
  const std::string& path = datasets.path(datasets.temporal);
  XfGroup group;
  std::int32_t count = 0;
  XfStatus status = XF_OPEN_GROUP(header.file, path, group);
  if (status.ok()) status = XF_GET_DATASET_NUM_TIMES(group, count);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Extracting number of times [XF_GET_DATASET_NUM_TIMES] from xmdf file ",
              header.file_name, path, status);
  }
}

void ReadXmdfTimes(XmdfFileHeader& header) {
  const XmdfDatasetList& datasets = header.datasets();
  if (datasets.temporal == 0) return;
  const std::string& path = datasets.path(datasets.temporal);
  XfGroup group;
  XfStatus status = XF_OPEN_GROUP(header.file, path, group);
  if (status.ok()) status = XF_GET_DATASET_TIMES(group, header.times);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Extracting times [XF_GET_DATASET_TIMES] from xmdf file ", header.file_name,
              path, status);
  }
}

ResultShape READ_XMDF_SHAPE_SILENTLY(const XmdfFileHeader& header) {
  std::int32_t nodes = 0;
  std::int32_t cells = 0;
  for (const GetDatasetPaths list : {XF_GET_SCALAR_DATASET_PATHS, XF_GET_VECTOR_DATASET_PATHS}) {
    std::vector<std::string> paths;
    XfGroup group;
    const bool is_open = list(header.file, paths).ok() && !paths.empty() &&
                         XF_OPEN_GROUP(header.file, paths.front(), group).ok();
    if (!is_open) continue;
    if (nodes == 0) std::ignore = XF_GET_DATASET_NUMVALS(group, nodes);
    if (cells == 0) std::ignore = XF_GET_DATASET_NUMACTIVE(group, cells);
  }
  return {nodes, cells, false};
}

}  // namespace quillet
