#include "program_runner.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>
#include <tuple>
#include <utility>

#include "build_paths.h"

namespace quillet::testing {
namespace {

namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool can_limit_memory = false;  // the sanitizer reserves terabytes of address space
#else
constexpr bool can_limit_memory = true;
#endif

std::string whole_file(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void limit(__rlimit_resource resource, rlim_t value) {
  const rlimit limits{value, value};
  ::setrlimit(resource, &limits);
}

// Between fork and exec; whatever fails shows as exit status 127.
[[noreturn]] void become_program(const fs::path& folder, int input, int output,
                                 const RunSettings& settings, char* const* arguments) {
  if (::chdir(folder.c_str()) != 0) ::_exit(127);
  if (settings.has_input) {
    ::dup2(input, STDIN_FILENO);
  } else {
    ::close(STDIN_FILENO);
  }
  if (settings.error_output >= 0) ::dup2(settings.error_output, STDERR_FILENO);
  if (settings.has_output) {
    ::dup2(output, STDOUT_FILENO);
  } else {
    ::close(STDOUT_FILENO);
    ::close(STDERR_FILENO);
  }
  ::signal(SIGXFSZ, SIG_IGN);
  // Whatever started the tests, a script in the background for one, may have had these ignored.
  for (const int interrupt : {SIGINT, SIGTERM, SIGHUP}) ::signal(interrupt, SIG_DFL);
  limit(RLIMIT_FSIZE, settings.largest_file);
  // What starts a foreign program needs memory of its own.
  if (can_limit_memory && !program_is_foreign) limit(RLIMIT_AS, settings.address_space);
  for (const std::string& entry : settings.environment) {
    const auto separator = entry.find('=');
    ::setenv(entry.substr(0, separator).c_str(), entry.c_str() + separator + 1, 1);
  }
  ::execv(arguments[0], arguments);
  ::_exit(127);
}

// Outside the folder, whose names tests look at; each run has its own.
fs::path output_file_beside(const Workspace& workspace) {
  static int runs = 0;
  const fs::path folder = workspace.path().parent_path();
  return folder.string() + "." + std::to_string(++runs) + ".stdout";
}

}  // namespace

Workspace::Workspace() {
  std::string name = (fs::temp_directory_path() / "quillet_test_XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) ADD_FAILURE() << "no temporary folder";
  folder = name;
}

Workspace::~Workspace() {
  std::error_code error;
  fs::remove_all(folder, error);
}

void Workspace::write(const std::string& name, std::string_view bytes) const {
  fs::create_directories(path(name).parent_path());
  std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string Workspace::read(const std::string& name) const {
  EXPECT_TRUE(has(name)) << "no file " << name;
  return whole_file(path(name));
}

bool Workspace::has(const std::string& name) const {
  return fs::exists(fs::symlink_status(path(name)));
}

std::vector<std::string> Workspace::names() const {
  std::vector<std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    found.push_back(fs::relative(entry.path(), folder).string());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::vector<std::string> RunResult::lines() const {
  std::vector<std::string> found;
  std::istringstream stream(output);
  for (std::string line; std::getline(stream, line);) found.push_back(line);
  return found;
}

bool RunResult::has_line(std::string_view line) const {
  return ("\n" + output).find("\n" + std::string(line) + "\n") != std::string::npos;
}

int RunResult::count_lines_with(std::string_view start) const {
  const auto all = lines();
  return static_cast<int>(std::count_if(all.begin(), all.end(), [&](const std::string& line) {
    return line.compare(0, start.size(), start) == 0;
  }));
}

LiveRun::LiveRun(const Workspace& workspace, std::vector<std::string> arguments,
                 const RunSettings& settings)
    : output_file(output_file_beside(workspace)),
      deadline(std::chrono::steady_clock::now() + settings.time_limit) {
  arguments.insert(arguments.begin(), program_path);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);

  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) ADD_FAILURE() << "no pipe";
  const int output = ::open(output_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  process = ::fork();
  if (process == 0) become_program(workspace.path(), ends[0], output, settings, pointers.data());
  ::close(ends[0]);
  ::close(output);
  input = ends[1];
  ::signal(SIGPIPE, SIG_IGN);
  type(settings.input);
}

LiveRun::~LiveRun() {
  if (!ended) {
    ::kill(process, SIGKILL);
    ::waitpid(process, &status, 0);
  }
  if (input >= 0) ::close(input);
  fs::remove(output_file);
}

bool LiveRun::has_ended() {
  if (!ended) ended = ::waitpid(process, &status, WNOHANG) == process;
  return ended;
}

// A foreign program may end its lines with CR LF.
std::string LiveRun::output() const {
  std::string text = whole_file(output_file);
  if (program_is_foreign) std::erase(text, '\r');
  return text;
}

bool LiveRun::wait_for(std::string_view text) {
  while (output().find(text) == std::string::npos) {
    if (has_ended() || std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

void LiveRun::type(std::string_view text) {
  // A run that has ended no longer reads it.
  std::ignore = ::write(input, text.data(), text.size());
}

void LiveRun::send(int signal) {
  ::kill(process, signal);
}

bool LiveRun::keeps_waiting() {
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  return !has_ended();
}

bool LiveRun::ends_by_itself() {
  while (!has_ended() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return ended;
}

RunResult LiveRun::finish() {
  ::close(std::exchange(input, -1));
  RunResult result;
  while (!has_ended() && !result.timed_out) {
    std::this_thread::sleep_for(std::chrono::microseconds(200));
    result.timed_out = std::chrono::steady_clock::now() > deadline;
  }
  if (result.timed_out) {
    ::kill(process, SIGKILL);
    ended = ::waitpid(process, &status, 0) == process;
  }
  result.output = output();
  if (WIFEXITED(status)) result.exit_status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  return result;
}

RunResult RUN(const Workspace& workspace, const std::vector<std::string>& arguments,
              const RunSettings& settings) {
  return LiveRun(workspace, arguments, settings).finish();
}

std::vector<std::string> FAULT(const std::string& call, int n, int error,
                               const fs::path& took_place) {
  std::vector<std::string> environment{
      "LD_PRELOAD=" + fault_library_path,
      // The sanitizer wants to be loaded first; here it need not be.
      "ASAN_OPTIONS=verify_asan_link_order=0",
      "QUILLET_FAULT=" + call + ":" + std::to_string(n) + ":" + std::to_string(error)};
  if (!took_place.empty()) environment.push_back("QUILLET_FAULT_TOOK_PLACE=" + took_place.string());
  return environment;
}

std::vector<std::string> WORDS(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace quillet::testing
