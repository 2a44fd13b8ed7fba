#include "ensight/export_steps.h"

#include <utility>

#include "support/work_crew.h"

namespace quillet {
namespace {

// Less text than this takes as long to write as a thread to start.
constexpr std::int64_t least_shared = std::int64_t{8} << 20;

}  // namespace

ExportSteps::ExportSteps(std::int64_t bytes)
    : is_ahead(WORK_CREW().has_helpers() && bytes >= least_shared) {}

void ExportSteps::say(const std::string& line) {
  then([line] { SAY(line); });
}

void ExportSteps::then(std::function<void()> tell, std::shared_ptr<const FileAhead> file) {
  if (steps.empty() && !file) {
    tell();
    return;
  }
  steps.push_back({std::move(tell), std::move(file)});
  owed.emplace([this] { tell_all(); });
}

// Lines are owed only while none is being told.
void ExportSteps::tell_first() {
  owed.reset();
  const Step step = std::move(steps.front());
  steps.pop_front();
  step.tell();
}

void ExportSteps::tell_what_is_written() {
  while (!steps.empty() && (!steps.front().file || !steps.front().file->is_under_way())) {
    tell_first();
  }
  if (!steps.empty()) owed.emplace([this] { tell_all(); });
}

void ExportSteps::tell_all() {
  while (!steps.empty()) tell_first();
}

}  // namespace quillet
