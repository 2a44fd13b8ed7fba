// Runs the built program in a folder of its own, as a user or a batch script would.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::testing {

// A fresh folder, removed with everything in it.
class Workspace {
 public:
  Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;
  ~Workspace();

  std::filesystem::path path(const std::string& name = "") const { return folder / name; }
  void write(const std::string& name, std::string_view bytes) const;
  std::string read(const std::string& name) const;  // fails the test when there is no such file
  bool has(const std::string& name) const;          // a dangling link counts too
  std::vector<std::string> names() const;           // of everything, sorted

 private:
  std::filesystem::path folder;
};

struct RunSettings {
  std::string input{};  // standard input, then its end
  bool has_input = true;
  bool has_output = true;                  // standard output and error
  int error_output = -1;                   // a descriptor for standard error; else the test's own
  rlim_t largest_file = RLIM_INFINITY;     // bytes; writing past it fails as on a full disk
  rlim_t address_space = RLIM_INFINITY;    // bytes; not under sanitizers, not for foreign programs
  std::chrono::seconds time_limit{30};     // then the run is killed
  std::vector<std::string> environment{};  // entries like NAME=value, beside the test's own
};

struct RunResult {
  std::string output;  // standard output, whole
  int exit_status = -1;
  int signal = 0;  // that ended the run
  bool timed_out = false;

  bool ended_well() const { return exit_status == 0 && signal == 0 && !timed_out; }
  std::vector<std::string> lines() const;
  // Whether the whole line is there, or the whole lines one after the other.
  bool has_line(std::string_view line) const;
  int count_lines_with(std::string_view start) const;
};

// A run that somebody sits in front of.
class LiveRun {
 public:
  LiveRun(const Workspace& workspace, std::vector<std::string> arguments,
          const RunSettings& settings = {});
  LiveRun(const LiveRun&) = delete;
  LiveRun& operator=(const LiveRun&) = delete;
  ~LiveRun();

  // False when the text did not appear on standard output before the run ended or its time was up.
  bool wait_for(std::string_view text);
  void type(std::string_view text);
  void send(int signal);
  // True when the run still goes on after a while: it waits for input.
  bool keeps_waiting();
  // True when the run ends though standard input is still open.
  bool ends_by_itself();
  // Ends standard input and waits for the end of the run.
  RunResult finish();

 private:
  bool has_ended();
  std::string output() const;

  std::filesystem::path output_file;
  std::chrono::steady_clock::time_point deadline;
  pid_t process = -1;
  int input = -1;
  int status = 0;
  bool ended = false;
};

RunResult RUN(const Workspace& workspace, const std::vector<std::string>& arguments,
              const RunSettings& settings = {});

// The environment of a run whose n-th call (from 1) of a system routine fails with the given error
// number: see faults/fault_library.cpp. The file `took_place`, when given, exists once it has.
std::vector<std::string> FAULT(const std::string& call, int n, int error,
                               const std::filesystem::path& took_place = {});

// The blank-separated words of a command line without quotes.
std::vector<std::string> WORDS(const std::string& line);

}  // namespace quillet::testing
