#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "support/system_child.h"

namespace quillet {
namespace {

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

// Reading beyond the end of the heap crashes; the parent has at least as much behind that end.
void tighten_heap() {
  ::mallopt(M_TOP_PAD, 0);
  ::malloc_trim(0);
}

// Nobody says anything on the console, and nothing of the parent is flushed or closed. An exception
// must not reach the parent's frames: it ends the child as a crash does.
[[noreturn]] void be_the_child(const ChildTask& task, const std::string& argument,
                               const ChildLimits& limits) noexcept {
  limit(RLIMIT_CORE, 0);
  limit(RLIMIT_CPU, static_cast<rlim_t>(limits.seconds));
  if (can_limit_memory) limit(RLIMIT_DATA, memory_in_use() + limits.memory);
  const int nowhere = ::open("/dev/null", O_WRONLY);
  if (nowhere < 0) ::_exit(0);
  ::dup2(nowhere, STDOUT_FILENO);
  ::dup2(nowhere, STDERR_FILENO);
  tighten_heap();
  ::_exit(task.perform(argument) ? 0 : 1);
}

bool child_succeeds(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return true;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

bool SUCCEEDS_IN_CHILD(const ChildTask& task, const std::string& argument,
                       const ChildLimits& limits) {
  // A child whose end is ignored cannot be waited for.
  const auto handling = std::signal(SIGCHLD, SIG_DFL);
  const pid_t child = ::fork();
  if (child == 0) be_the_child(task, argument, limits);
  const bool succeeds = child < 0 || child_succeeds(child);
  std::signal(SIGCHLD, handling);
  return succeeds;
}

bool IS_CHILD_OF_ITSELF(const std::vector<std::string>&, const ChildTask&, int&) {
  return false;
}

}  // namespace quillet
