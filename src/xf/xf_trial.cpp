#include "xf/xf_trial.h"

#include <cerrno>
#include <tuple>
#include <vector>

#include "xf/xf_dataset_reader.h"
#include "xf/xf_errors.h"
#include "xf/xf_file.h"

namespace quillet {
namespace {

// A sound file takes milliseconds and a few megabytes.
constexpr ChildLimits trial_limits{.seconds = 5, .memory = std::size_t{1} << 30};

// Everything that reads attributes, and what comes before it.
void read_attributes(const std::string& name) {
  XfFile file;
  float version = 0;
  if (!XF_OPEN_FILE(name, file).ok() || !XF_GET_LIBRARY_VERSION_FILE(file, version).ok()) return;
  std::vector<std::string> paths, vectors;
  if (!XF_GET_SCALAR_DATASET_PATHS(file, paths).ok()) return;
  std::ignore = XF_GET_VECTOR_DATASET_PATHS(file, vectors);
  paths.insert(paths.end(), vectors.begin(), vectors.end());
  for (const std::string& path : paths) {
    XfGroup group;
    std::string units;
    if (XF_OPEN_GROUP(file, path, group).ok())
      std::ignore = XF_GET_DATASET_TIME_UNITS(group, units);
  }
}

// HDF5 goes on without memory that it does not get.
bool memory_suffices(const std::string& name) {
  errno = 0;
  read_attributes(name);
  return errno != ENOMEM;
}

}  // namespace

const ChildTask xf_trial_task{.name = "read-attributes", .perform = memory_suffices};

XfStatus XF_TRY_FILE(const std::string& name) {
  xf_prepare_hdf5();  // once, not in every child
  if (SUCCEEDS_IN_CHILD(xf_trial_task, name, trial_limits)) return {};
  return XF_FAILURE("expected intact HDF5 headers, found damage that HDF5 cannot cope with");
}

}  // namespace quillet
