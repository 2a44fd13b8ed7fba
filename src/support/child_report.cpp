#include "support/child_letters.h"
#include "support/system_child.h"

namespace quillet {

void ChildReport::send(char letter) {
  last_sent = Clock::now();
  WRITE_SOME(pipe, &letter, 1);
}

// Every letter wakes the parent.
void ChildReport::progress() {
  constexpr std::chrono::milliseconds between_letters{100};
  if (Clock::now() - last_sent >= between_letters) send(child_progressed);
}

void ChildReport::done() {
  send(child_done);
}

}  // namespace quillet
