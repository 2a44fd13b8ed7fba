// An XMDF file: what the trial lets pass is opened, listed and read without a crash.
#include <pthread.h>
#include <sanitizer/common_interface_defs.h>

#include <vector>

#include "fuzz/fuzz_input.h"
#include "xf/xf_dataset_reader.h"
#include "xf/xf_file.h"
#include "xf/xf_trial.h"

namespace quillet {
namespace {

void read_dataset(const XfFile& file, const std::string& path) {
  XfGroup group;
  std::int32_t nodes = 0, cells = 0;
  std::vector<double> times;
  if (!XF_OPEN_GROUP(file, path, group).ok() || !XF_GET_DATASET_NUMVALS(group, nodes).ok() ||
      !XF_GET_DATASET_NUMACTIVE(group, cells).ok() || !XF_GET_DATASET_TIMES(group, times).ok()) {
    return;
  }
  std::vector<float> values(static_cast<std::size_t>(nodes));
  std::vector<float> pairs(2 * values.size());
  std::vector<std::int8_t> flags(static_cast<std::size_t>(cells));
  for (std::int32_t output = 1; output <= static_cast<std::int32_t>(times.size()); ++output) {
    const bool is_read = XF_READ_SCALAR_VALUES_TIMESTEP(group, output, values).ok() ||
                         XF_READ_VECTOR_VALUES_TIMESTEP(group, output, pairs).ok();
    if (!is_read || !XF_READ_ACTIVITY_TIMESTEP(group, output, flags).ok()) return;
  }
}

void read_file(const std::string& name) {
  XfFile file;
  if (!XF_OPEN_FILE(name, file).ok()) return;
  std::vector<std::string> scalars, vectors;
  if (!XF_GET_SCALAR_DATASET_PATHS(file, scalars).ok() ||
      !XF_GET_VECTOR_DATASET_PATHS(file, vectors).ok()) {
    return;
  }
  for (const std::string& path : scalars) read_dataset(file, path);
  for (const std::string& path : vectors) read_dataset(file, path);
}

// A child that HDF5 brings down is what the trial is for. The fuzzer would note the input as one
// that crashes.
void report_no_crash_of_children() {
  ::pthread_atfork(nullptr, nullptr, [] { __sanitizer_set_death_callback(nullptr); });
}

}  // namespace
}  // namespace quillet

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  quillet::report_no_crash_of_children();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static quillet::fuzz::NamedMemoryFile file;
  file.set(data, size);
  if (quillet::XF_TRY_FILE(file.name()).ok()) quillet::read_file(file.name());
  return 0;
}
