#include "support/progress_console.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "support/run_tally.h"
#include "support/terminal.h"

namespace quillet {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds first_wait{500};
constexpr milliseconds between_drawings{100};
constexpr milliseconds between_log_lines{10000};

void put(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

// Never more than everything: a guess at the output times may be low.
double part_done(const RunTally& tally) {
  if (tally.times_to_pass <= 0) return 0;
  const double part =
      static_cast<double>(tally.times_passed) / static_cast<double>(tally.times_to_pass);
  return std::min(part, 1.0);
}

std::string duration_text(double seconds) {
  const auto whole = static_cast<long>(std::ceil(seconds));
  if (whole < 60) return fmt::format("{} s", whole);
  if (whole < 3600) return fmt::format("{} min {:02} s", whole / 60, whole % 60);
  return fmt::format("{} h {:02} min", whole / 3600, whole % 3600 / 60);
}

}  // namespace

std::string PROGRESS_LINE(double seconds, std::size_t width) {
  const RunTally& tally = RUN_TALLY();
  const double done = part_done(tally);
  const auto bytes = static_cast<double>(tally.bytes_read);
  std::string line = fmt::format("{:3.0f} % | {} output times | {:.0f} MB/s", 100 * done,
                                 tally.times_passed, bytes / 1e6 / std::max(seconds, 1e-3));
  if (done > 0 && done < 1) line += " | " + duration_text(seconds / done - seconds) + " left";
  return line.substr(0, width);
}

ProgressConsole::ProgressConsole(Console& shown_on, Form how)
    : console(shown_on),
      form(how),
      start(Clock::now()),
      next(start + (form == Form::line_of_terminal ? first_wait : between_log_lines)) {}

ProgressConsole::~ProgressConsole() {
  clear();
}

void ProgressConsole::say(std::string_view line) {
  clear();
  console.say(line);
  draw_when_due();
}

bool ProgressConsole::wait_for_enter() {
  clear();
  return console.wait_for_enter();
}

void ProgressConsole::draw_when_due() {
  if (Clock::now() >= next) draw();
}

void ProgressConsole::draw() {
  const std::chrono::duration<double> elapsed = Clock::now() - start;
  if (form == Form::lines_of_log) {
    put(PROGRESS_LINE(elapsed.count(), std::string::npos) + "\n");
    next = Clock::now() + between_log_lines;
    return;
  }
  // The last column stays free: a terminal may go to the next line there.
  const std::size_t width = std::max<std::size_t>(TERMINAL_WIDTH(), 2) - 1;
  const std::string line = PROGRESS_LINE(elapsed.count(), width);
  clear();
  put(line);
  drawn_length = line.size();
  next = Clock::now() + between_drawings;
}

void ProgressConsole::clear() {
  if (drawn_length == 0) return;
  // The destructor comes here: without memory of its own.
  std::fprintf(stderr, "\r%*s\r", static_cast<int>(drawn_length), "");
  std::fflush(stderr);
  drawn_length = 0;
}

}  // namespace quillet
