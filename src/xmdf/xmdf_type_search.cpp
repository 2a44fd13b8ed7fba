#include "xmdf/xmdf_type_search.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "results/result_types.h"
#include "support/console.h"
#include "support/text.h"
#include "xmdf/xmdf_folders.h"
#include "xmdf/xmdf_name_search.h"

namespace quillet {
namespace {

struct Folder {
  DatasetKind kind;
  std::int32_t XmdfDatasetList::*index;
};

constexpr std::array folders{Folder{DatasetKind::maximum, &XmdfDatasetList::maximums},
                             Folder{DatasetKind::series, &XmdfDatasetList::temporal},
                             Folder{DatasetKind::minimum, &XmdfDatasetList::minimums},
                             Folder{DatasetKind::special_times, &XmdfDatasetList::times}};

const Folder* folder_of(const std::string& path) {
  const auto* const folder =
      std::find_if(folders.begin(), folders.end(), [&](const Folder& candidate) {
        return FIND_XMDF_FOLDER(path, candidate.kind) != std::string::npos;
      });
  return folder == folders.end() ? nullptr : folder;
}

// What stands before the folder.
std::string group_of(const std::string& path) {
  return path.substr(0, FIND_XMDF_FOLDER(path, folder_of(path)->kind));
}

// A series of one run beside the maximum of another.
void warn_of_groups(const XmdfDatasetList& datasets) {
  for (const std::int32_t stored : {datasets.maximums, datasets.minimums}) {
    if (stored == 0 || datasets.temporal == 0) continue;
    const std::string& extreme = datasets.path(stored);
    const std::string& series = datasets.path(datasets.temporal);
    if (group_of(extreme) == group_of(series)) continue;
    SAY("WARNING - Datasets of different groups match: " + QUOTED(series) + " " + QUOTED(extreme));
  }
}

void warn_of_both_kinds(const XmdfFileHeader& header) {
  if (!header.scalars.found() || !header.vectors.found()) return;
  const XmdfDatasetList& used = header.vectors;
  for (const std::int32_t position :
       {used.selected, used.temporal, used.maximums, used.minimums, used.times}) {
    if (position == 0) continue;
    SAY("WARNING - Scalar and vector datasets match, using vector: " + QUOTED(used.path(position)));
    return;
  }
}

// One of the two lists of a file. A path may be named by its group and dataset alone.
struct Search {
  const XmdfNameSearch& type_names;
  const std::string& name;
  bool by_path;
  bool vectors;

  bool finds(const XmdfDatasetList& datasets, std::size_t i) const {
    if (!by_path) return type_names.finds(datasets, i);
    const XmdfPath& split = datasets.split_paths[i];
    const bool matches = !BLANK(name) && (FLAGEXISTS(datasets.paths[i], name) ||
                                          FLAGEXISTS(split.group + "/" + split.dataset, name));
    if (matches) SAY("Found: " + QUOTED(datasets.paths[i]));
    return matches;
  }

  void take(XmdfDatasetList& datasets, std::int32_t position) const {
    const std::string& path = datasets.path(position);
    if (by_path) {
      CHOOSE_XMDF_DATASET(datasets.selected, position, path);
      datasets.temporal = position;
      return;
    }
    const Folder* const folder = folder_of(path);
    if (folder == nullptr) fail_unknown_folder(path);
    CHOOSE_XMDF_DATASET(datasets.*folder->index, position, path);
  }

  [[noreturn]] void fail_unknown_folder(const std::string& path) const {
    SAY_APART("ERROR - Unknown Data Folder: " + QUOTED(path));
    SAY("Expecting one of: Maximums, Minimums, Times or Temporal.");
    SAY(std::string(vectors ? "If File" : "If file") +
        " has not been written by ORVANE, other folders can be accessed by specifying the path "
        "(-path)");
    EXITS();
  }

  void run(XmdfDatasetList& datasets) const {
    const std::string kind = vectors ? "vector" : "scalar";
    SAY("Searching " + kind + " datasets for " + QUOTED(name) + "...");
    datasets.clear_selection();
    for (std::size_t i = 0; i < datasets.paths.size(); ++i) {
      if (finds(datasets, i)) take(datasets, static_cast<std::int32_t>(i) + 1);
    }
    if (!datasets.found()) {
      SAY("Warning - No " + kind + " datasets found of type " + QUOTED(name));
    }
  }
};

bool has_dataset_named(const XmdfDatasetList& datasets, std::string_view name) {
  return std::any_of(datasets.split_paths.begin(), datasets.split_paths.end(),
                     [&](const XmdfPath& path) { return ASAME(path.dataset, name); });
}

// "d (Depth), v (Vector Velocity)": the types whose names datasets bear. A type whose code a later
// one has too cannot be asked for.
std::string types_in(const XmdfFileHeader& header) {
  std::string list;
  for (const ResultType& type : result_types) {
    std::string name_of_code;
    LOOK_UP_TYPE_NAME(type.code, name_of_code);
    if (name_of_code != type.name) continue;
    if (!has_dataset_named(header.scalars, type.name) &&
        !has_dataset_named(header.vectors, type.name)) {
      continue;
    }
    list += std::string(list.empty() ? "" : ", ") + std::string(type.code) + " (" +
            std::string(type.name) + ")";
  }
  return list;
}

[[noreturn]] void fail_on_type(const Search& search, const XmdfFileHeader& header) {
  SAY_APART("ERROR - No datasets found of type " + QUOTED(search.name) + " found in " +
            header.file_name);
  const std::string types = search.by_path ? "" : types_in(header);
  if (!types.empty()) SAY_HELP("Types in the file: " + types);
  SAY_HELP("-xnfo lists all that the file holds, -path takes any of it.");
  EXITS();
}

}  // namespace

void FindXmdfType(std::vector<XmdfFileHeader>& files, const std::string& typeName, bool byPath) {
  // An unknown type's name is NUL characters; it matches nothing, as an empty text does.
  const std::string name = typeName.substr(0, typeName.find('\0'));
  for (XmdfFileHeader& header : files) {
    SAY("Searching specified xmdf type in " + QUOTED(header.file_name));
    const XmdfNameSearch type_names(header, name);
    const Search scalar_search{type_names, name, byPath, false};
    scalar_search.run(header.scalars);
    Search{type_names, name, byPath, true}.run(header.vectors);
    if (!header.datasets().found()) fail_on_type(scalar_search, header);
    warn_of_both_kinds(header);
    if (!byPath) warn_of_groups(header.datasets());
  }
}

bool SELECT_XMDF_DATASET(XmdfFileHeader& header, bool vectors, std::int32_t position) {
  XmdfDatasetList& datasets = vectors ? header.vectors : header.scalars;
  if (position < 1 || position > datasets.count) return false;
  datasets.selected = position;
  datasets.temporal = position;
  return true;
}

bool IS_XMDF_WATER_LEVEL(const XmdfFileHeader& header) {
  const XmdfDatasetList& scalars = header.scalars;
  if (header.uses_vectors() || scalars.selected == 0) return false;
  const auto i = static_cast<std::size_t>(scalars.selected) - 1;
  return ASAME(scalars.split_paths[i].dataset, "Water Level");
}

bool IS_XMDF_PEAK_TIME(const XmdfFileHeader& header) {
  const XmdfDatasetList& datasets = header.datasets();
  return std::any_of(
      datasets.peak_outputs.begin(), datasets.peak_outputs.end(),
      [&](const XmdfPeakOutput& output) { return output.path == datasets.selected; });
}

}  // namespace quillet
