#include "support/file_units.h"

#include <map>
#include <utility>

#include "support/console.h"
#include "support/text.h"

namespace quillet {
namespace {

std::map<int, std::function<void()>>& units() {
  static std::map<int, std::function<void()>> open_units;
  return open_units;
}

}  // namespace

int REGISTER_UNIT(std::function<void()> close) {
  static int last_unit = 0;
  units().emplace(++last_unit, std::move(close));
  return last_unit;
}

void RELEASE_UNIT(int unit) {
  units().erase(unit);
}

void CLOSE_ALL_UNITS() {
  while (!units().empty()) {
    // Taken off the list first: whatever its closing does, it is not closed twice.
    auto newest = units().extract(std::prev(units().end()));
    newest.mapped()();
  }
}

void ASK_TO_TRY_AGAIN(const std::string& file_name) {
  SAY_APART("ERROR - Could not open file: " + QUOTED(file_name));
  if (!WAIT_AFTER("Press Enter to try again")) EXITS();
}

}  // namespace quillet
