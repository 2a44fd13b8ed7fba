#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __linux__
#include <malloc.h>
#include <sys/prctl.h>
#endif

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <limits>
#include <utility>

#include "support/child_letters.h"
#include "support/interrupt.h"
#include "support/system_child.h"

namespace quillet {
namespace {

// A sanitizer has more memory than any limit from the start. GCC tells of it in one way, Clang in
// the other.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool is_sanitized = true;
#elif !defined(__has_feature)
constexpr bool is_sanitized = false;
#elif __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool is_sanitized = true;
#else
constexpr bool is_sanitized = false;
#endif

#ifdef __linux__
constexpr bool can_limit_memory = !is_sanitized;
#else
constexpr bool can_limit_memory = false;
#endif

template <typename Resource>
void limit(Resource resource, rlim_t value) {
  const rlimit limits{value, value};
  ::setrlimit(resource, &limits);
}

#ifdef __linux__
rlim_t memory_in_use() {
  const auto usage = ::mallinfo2();
  return usage.arena + usage.hblkhd;
}

// Reading beyond the end of the heap crashes; the parent has at least as much behind that end. What
// is given back is soon asked for again.
void tighten_heap() {
  ::mallopt(M_TOP_PAD, 0);
  ::mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  ::malloc_trim(0);
}

// False when the parent is gone already.
bool live_no_longer_than(pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  return ::getppid() == parent;
}
#else
rlim_t memory_in_use() {
  return 0;
}
void tighten_heap() {}
bool live_no_longer_than(pid_t) {
  return true;
}
#endif

void set_handling(int signal, void (*handling)(int)) {
  struct sigaction action {};
  action.sa_handler = handling;
  ::sigaction(signal, &action, nullptr);
}

// Handlers of the parent's are not for the child's crashes; interrupts are for the parent, which
// ends the child.
void leave_signals_to_the_system() {
  for (int signal = 1; signal < NSIG; ++signal) set_handling(signal, SIG_DFL);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) set_handling(signal, SIG_IGN);
}

// What libraries say as they crash is not for the console.
bool be_silent() {
  const int nowhere = ::open("/dev/null", O_WRONLY);
  return nowhere >= 0 && ::dup2(nowhere, STDOUT_FILENO) >= 0 && ::dup2(nowhere, STDERR_FILENO) >= 0;
}

// Nothing of the parent is flushed or closed. An exception must not reach the parent's frames: it
// ends the child as a crash does.
[[noreturn]] void be_the_child(const ChildTask& task, const std::string& item,
                               const ChildLimits& limits, int pipe, pid_t parent) noexcept {
  leave_signals_to_the_system();
  if (!live_no_longer_than(parent) || !be_silent()) ::_exit(1);
  limit(RLIMIT_CORE, 0);
  if (can_limit_memory) limit(RLIMIT_DATA, memory_in_use() + limits.memory);
  tighten_heap();
  WRITE_SOME(pipe, &child_started, 1);
  ChildReport report(pipe);
  task.perform(item, report);
  ::_exit(0);
}

enum class Heard { letters, nothing, end };

// Waits for letters from the child. Nothing when patience is at an end, or the run is.
Heard listen(int pipe, std::chrono::milliseconds patience, std::string& letters) {
  pollfd wanted{pipe, POLLIN, 0};
  int ready = 0;
  do {
    ready = ::poll(&wanted, 1, static_cast<int>(patience.count()));
  } while (ready < 0 && errno == EINTR && !INTERRUPTED());
  if (ready <= 0) return Heard::nothing;
  std::array<char, 256> bytes{};
  const ssize_t count = ::read(pipe, bytes.data(), bytes.size());
  if (count < 0 && errno == EINTR) return Heard::letters;
  if (count <= 0) return Heard::end;
  letters.append(bytes.data(), static_cast<std::size_t>(count));
  return Heard::letters;
}

ChildEnd follow(int pipe, std::chrono::milliseconds patience) {
  std::string letters;
  Heard heard = Heard::letters;
  while (heard == Heard::letters && !IS_DONE(letters)) heard = listen(pipe, patience, letters);
  if (heard == Heard::nothing) return {ChildEnd::How::stuck, {}};
  if (letters.empty()) return {ChildEnd::How::not_started, "it could not be set up"};
  return {IS_DONE(letters) ? ChildEnd::How::done : ChildEnd::How::died, {}};
}

ChildEnd not_started() {
  return {ChildEnd::How::not_started, std::strerror(errno)};
}

bool make_pipe(std::array<int, 2>& pipe) {
  if (::pipe(pipe.data()) != 0) return false;
  for (const int end : pipe) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  return true;
}

// Children that are done and take their time to give back their memory.
std::vector<pid_t> children_leaving;

void reap_those_gone() {
  std::erase_if(children_leaving,
                [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
}

}  // namespace

struct Child::Process {
  Process() = default;
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process() {
    end_now();
    if (pipe >= 0) ::close(pipe);
  }

  void end_now() {
    if (id > 0) ::kill(id, SIGKILL);
    while (id > 0 && ::waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
    }
    id = -1;
  }
  // Nobody waits for it.
  void let_go() {
    children_leaving.push_back(std::exchange(id, -1));
    reap_those_gone();
  }

  pid_t id = -1;
  int pipe = -1;  // its letters
  std::chrono::milliseconds patience{};
  ChildEnd end;
};

Child::Child(const ChildTask& task, const std::string& item, const ChildLimits& limits)
    : process(std::make_unique<Process>()) {
  std::array<int, 2> pipe{};
  if (!make_pipe(pipe)) {
    process->end = not_started();
    return;
  }
  process->pipe = pipe[0];
  process->patience = limits.patience;
  const pid_t parent = ::getpid();
  process->id = ::fork();
  if (process->id == 0) be_the_child(task, item, limits, pipe[1], parent);
  if (process->id < 0) process->end = not_started();
  ::close(pipe[1]);
}

Child::~Child() = default;

ChildEnd Child::wait() {
  if (process->id < 0) return process->end;
  process->end = follow(process->pipe, process->patience);
  if (process->end.how == ChildEnd::How::done) {
    process->let_go();
  } else {
    process->end_now();
  }
  return process->end;
}

bool IS_CHILD_OF_ITSELF(const std::vector<std::string>&, const ChildTask&, int&) {
  return false;
}

}  // namespace quillet
