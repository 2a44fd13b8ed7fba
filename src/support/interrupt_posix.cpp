#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

#include "support/interrupt.h"

namespace quillet {
namespace {

constexpr int noted_signals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> noted_signal = 0;
static_assert(std::atomic<int>::is_always_lock_free);

void note(int signal) {
  noted_signal = signal;
}

// Waits must notice: reading from the terminal is not taken up again after the signal, and the next
// signal meets the system's own handling.
void handle(int signal) {
  struct sigaction action {};
  action.sa_handler = note;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  struct sigaction before {};
  if (::sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) return;
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

void NOTE_INTERRUPTS() {
  for (const int signal : noted_signals) handle(signal);
}

bool INTERRUPTED() {
  return noted_signal != 0;
}

// An interrupt may come just before the system waits, or to another thread: that wakes nobody here.
bool AWAIT_INPUT() {
  constexpr int look_every = 100;  // milliseconds
  pollfd wanted{STDIN_FILENO, POLLIN, 0};
  while (!INTERRUPTED()) {
    const int ready = ::poll(&wanted, 1, look_every);
    if (ready > 0 || (ready < 0 && errno != EINTR)) return true;
  }
  return false;
}

void DIE_OF_INTERRUPT() {
  if (!INTERRUPTED()) return;
  std::signal(noted_signal, SIG_DFL);
  std::raise(noted_signal);
}

}  // namespace quillet
