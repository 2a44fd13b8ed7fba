// What may bring down the process that does it, and is therefore done by a child first.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quillet {

// Prints nothing and leaves nothing behind; true when it succeeds.
struct ChildTask {
  const char* name;
  bool (*perform)(const std::string& argument);
};

// What a child may use before it counts as failed.
struct ChildLimits {
  int seconds;         // of the processor, not of a slow drive
  std::size_t memory;  // bytes, beyond what the parent has
};

// False when a child that performs the task fails, crashes or passes a limit. True when it
// succeeds, and when no child can be had: then nothing tells.
bool SUCCEEDS_IN_CHILD(const ChildTask& task, const std::string& argument,
                       const ChildLimits& limits);

// Where a process cannot be doubled, a child is the program itself, started anew and told so by its
// arguments. First thing in a program that allows this: true when the process is such a child; then
// the task has been performed and the program ends with `status`. In other programs there no child
// can be had.
bool IS_CHILD_OF_ITSELF(const std::vector<std::string>& arguments, const ChildTask& task,
                        int& status);

}  // namespace quillet
