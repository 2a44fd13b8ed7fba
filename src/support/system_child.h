// What may bring down the process that does it, and is therefore done by a child first.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "support/system_files.h"

namespace quillet {

// How a task tells its parent that it gets on.
class ChildReport {
 public:
  explicit ChildReport(SystemFile pipe_end) : pipe(pipe_end) {}

  // Called every now and then: as long as it is, the task is not stuck.
  void progress();
  // The work is done.
  void done();

 private:
  using Clock = std::chrono::steady_clock;

  void send(char letter);

  SystemFile pipe;
  Clock::time_point last_sent = Clock::now();
};

// Works on an item; does not report it done when something is wrong with it. Prints nothing and
// leaves nothing behind.
struct ChildTask {
  const char* name;
  void (*perform)(const std::string& item, ChildReport& report);
};

struct ChildLimits {
  std::chrono::milliseconds patience;  // so long a child may go without progress
  std::size_t memory;                  // bytes, beyond what the parent has
};

struct ChildEnd {
  enum class How { done, died, stuck, not_started };

  How how = How::done;
  std::string reason;  // the system's, when the child was not started
};

// A child that performs a task. It does not outlive this process, nor, when it is not done, this
// object; one that passes a limit dies.
class Child {
 public:
  Child(const ChildTask& task, const std::string& item, const ChildLimits& limits);
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child();

  // Waits for the child's end, which is made when it is stuck or when the run is interrupted. Once.
  ChildEnd wait();

 private:
  struct Process;
  std::unique_ptr<Process> process;
};

// Where a process cannot be doubled, a child is the program itself, started anew and told so by its
// arguments. First thing in a program that allows this: true when the process is such a child; then
// the task has been performed and the program ends with `status`. In other programs nothing is
// tried there, and every task counts as done.
bool IS_CHILD_OF_ITSELF(const std::vector<std::string>& arguments, const ChildTask& task,
                        int& status);

}  // namespace quillet
