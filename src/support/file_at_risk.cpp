#include "support/file_at_risk.h"

#include <atomic>

namespace quillet {
namespace {

// A crash may be looked at on any thread.
std::atomic<const FileAtRisk*> innermost = nullptr;

}  // namespace

FileAtRisk::FileAtRisk(const std::string& file_name, const char* what_is_damaged)
    : name(file_name), damage(what_is_damaged), outer(innermost.load()) {
  if (!name.empty()) innermost = this;
}

FileAtRisk::~FileAtRisk() {
  innermost = outer;
}

const FileAtRisk* FILE_AT_RISK() {
  return innermost;
}

}  // namespace quillet
