#include "xf/xf_trial.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <tuple>
#include <vector>

#include "xf/xf_dataset_reader.h"
#include "xf/xf_errors.h"
#include "xf/xf_file.h"

namespace quillet {
namespace {

// A sound file takes milliseconds and a few megabytes.
constexpr rlim_t most_seconds = 5;               // of the processor, not of a slow drive
constexpr rlim_t most_memory = rlim_t{1} << 30;  // beyond what the parent has

#ifdef __SANITIZE_ADDRESS__
constexpr bool can_limit_memory = false;  // the sanitizer has more than that from the start
#else
constexpr bool can_limit_memory = true;
#endif

void limit(__rlimit_resource resource, rlim_t value) {
  const rlimit limits{value, value};
  ::setrlimit(resource, &limits);
}

rlim_t memory_in_use() {
  const auto usage = ::mallinfo2();
  return usage.arena + usage.hblkhd;
}

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

// Reading beyond the end of the heap crashes; the parent has at least as much behind that end.
void tighten_heap() {
  ::mallopt(M_TOP_PAD, 0);
  ::malloc_trim(0);
}

// Neither HDF5 nor the system says anything on the console, and nothing of the parent is flushed or
// closed.
[[noreturn]] void be_the_child(const std::string& name) {
  limit(RLIMIT_CORE, 0);
  limit(RLIMIT_CPU, most_seconds);
  if (can_limit_memory) limit(RLIMIT_DATA, memory_in_use() + most_memory);
  const int nowhere = ::open("/dev/null", O_WRONLY);
  if (nowhere < 0) ::_exit(0);
  ::dup2(nowhere, STDOUT_FILENO);
  ::dup2(nowhere, STDERR_FILENO);
  tighten_heap();
  errno = 0;
  read_attributes(name);
  // HDF5 goes on without memory that it does not get.
  ::_exit(errno == ENOMEM ? 1 : 0);
}

bool child_succeeds(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return true;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

XfStatus xf_try_file(const std::string& name) {
  xf_prepare_hdf5();  // once, not in every child
  // A child whose end is ignored cannot be waited for.
  const auto handling = std::signal(SIGCHLD, SIG_DFL);
  const pid_t child = ::fork();
  if (child == 0) be_the_child(name);
  const bool survived = child < 0 || child_succeeds(child);
  std::signal(SIGCHLD, handling);
  if (survived) return {};
  return xf_failure("expected intact HDF5 headers, found damage that HDF5 cannot cope with");
}

}  // namespace quillet
