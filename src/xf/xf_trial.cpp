#include "xf/xf_trial.h"

#include <cerrno>
#include <tuple>

#include "xf/xf_dataset_reader.h"
#include "xf/xf_errors.h"
#include "xf/xf_file.h"
#include "xf/xf_group_trial.h"

namespace quillet {
namespace {

// A sound file takes a few megabytes.
constexpr std::size_t most_memory = std::size_t{1} << 30;

// What the program asks of a file, in its order.
void try_everything(const std::string& name, ChildReport& report) {
  XfFile file;
  float version = 0;
  if (!XF_OPEN_FILE(name, file).ok() || !XF_GET_LIBRARY_VERSION_FILE(file, version).ok()) return;
  std::vector<std::string> paths, vectors;
  if (!XF_GET_SCALAR_DATASET_PATHS(file, paths).ok()) return;
  std::ignore = XF_GET_VECTOR_DATASET_PATHS(file, vectors);
  paths.insert(paths.end(), vectors.begin(), vectors.end());
  for (const std::string& path : paths) {
    XfGroup group;
    if (XF_OPEN_GROUP(file, path, group).ok()) xf_try_group(group);
    report.progress();
  }
}

// Memory that HDF5 has overwritten is noticed at the latest when it gives back all. Files that the
// parent has open are not the child's to close.
void give_back_all() {
  if (H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_FILE) == 0) H5close();
}

// HDF5 goes on without memory that it does not get.
void try_file(const std::string& name, ChildReport& report) {
  errno = 0;
  try_everything(name, report);
  if (errno == ENOMEM) return;
  give_back_all();
  report.done();
}

std::string seconds_of(std::chrono::milliseconds time) {
  return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(time).count());
}

XfStatus status_of(const ChildEnd& end, std::chrono::milliseconds patience) {
  const std::string expected = "expected intact HDF5 headers, found ";
  switch (end.how) {
    case ChildEnd::How::done:
      break;
    case ChildEnd::How::died:
      return XF_FAILURE(expected + "damage that HDF5 cannot cope with");
    case ChildEnd::How::stuck:
      return XF_FAILURE(expected + "no progress in reading them for " + seconds_of(patience) +
                        " s");
    case ChildEnd::How::not_started:
      return XF_FAILURE("the trial of the file cannot be started: " + end.reason);
  }
  return {};
}

}  // namespace

const ChildTask xf_trial_task{.name = "try-xmdf-file", .perform = try_file};

XfStatus XF_TRY_FILE(const std::string& name, std::chrono::milliseconds patience) {
  xf_prepare_hdf5();  // once, not in every child
  return status_of(RUN_IN_CHILD(xf_trial_task, name, {patience, most_memory}), patience);
}

}  // namespace quillet
