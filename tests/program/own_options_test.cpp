// The options with two dashes, as users and scripts meet them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "build_paths.h"
#include "program/writing_runs.h"

namespace quillet::testing {
namespace {

const std::string banner = "\nBuild 2020-07-AH\n\n";

// The example of the usage text: without the banner and the pause.
TEST(Help, IsTheUsageThenEveryOperationThenOurOptions) {
  const Workspace folder;
  const RunResult bare = RUN(folder, {});
  const RunResult help = RUN(folder, {"-max", "x.dat", "--help"}, {.has_input = false});
  ASSERT_EQ(bare.output.substr(0, banner.size()), banner);
  const std::string pause = "Press Enter to Continue\n";
  const std::string usage =
      bare.output.substr(banner.size(), bare.output.size() - banner.size() - pause.size());
  EXPECT_EQ(help.output.substr(0, usage.size()), usage);
  EXPECT_EQ(help.exit_status, 0);
  for (const std::string line :
       {"     -max       maximum                            docs/operations/max-min.md",
        "     -xnfo      XMDF information                   docs/operations/xnfo.md",
        "     -2dm <mesh>            names the mesh of all inputs",
        "  Options with two dashes:", "     --version              shows the version"}) {
    EXPECT_TRUE(help.has_line(line)) << line;
  }
  EXPECT_EQ(help.output.find("-ddur ", usage.size()), std::string::npos);
  EXPECT_EQ(help.output.find("Press Enter"), std::string::npos);
}

TEST(Version, IsOneLine) {
  const Workspace folder;
  const RunResult run = RUN(folder, {"--version", "-dur"});
  EXPECT_TRUE(run.output.starts_with("quillet 0.")) << run.output;
  EXPECT_EQ(run.lines().size(), 1U);
  EXPECT_EQ(RUN(folder, {"-x", "--version"}).output, run.output);
  EXPECT_NE(RUN(folder, {"-out", "--version"}).output, run.output);  // a name
  EXPECT_EQ(RUN(folder, {"-out", "-out", "--version"}).output, run.output);
}

TEST(OwnOptions, ThatAreNoneOrHaveAnotherFormEndTheRun) {
  const Workspace folder;
  const std::string pause = "Press Enter to Continue\n";
  for (const std::string option : {"--", "--max", "--Summary", "--summary-", "---b"}) {
    EXPECT_EQ(RUN(folder, {option}).output,
              banner + "\nERROR - Incorrect flag specified: \"" + option +
                  "\"\n   quillet --help shows all options.\n" + pause);
  }
  for (const std::string option :
       {"--summary=", "--progress=1", "--strict=yes", "--threads", "--threads=", "--threads=0",
        "--threads=-1", "--threads=2x", "--threads=1.5", "--threads=9999999999"}) {
    EXPECT_EQ(RUN(folder, {option}).output,
              banner + "\nERROR - Reading value of option: \"" + option + "\"\n" + pause);
  }
}

// Without it every run ends with status 0 and a failing one reads what was meant for the next.
TEST(Strict, TellsAnErrorByItsStatusAndReadsNothing) {
  const Workspace folder;
  MAKE_INPUTS_OF_WRITING_RUNS(folder);
  const RunResult good = RUN(folder, WORDS("--strict -max a_d.dat"));
  EXPECT_EQ(good.exit_status, 0);
  EXPECT_TRUE(good.output.ends_with("\nFinished.\n"));
  const RunResult relaxed = RUN(folder, WORDS("-max none.dat"), {.input = "\n\n"});
  EXPECT_EQ(relaxed.exit_status, 0);
  for (const std::string arguments : {"-max none.dat --strict", "--strict -max", "--strict -k5",
                                      "--strict -nosuch", "-dif --strict a_d.dat"}) {
    LiveRun run(folder, WORDS(arguments));
    EXPECT_TRUE(run.ends_by_itself()) << arguments;
    const RunResult result = run.finish();
    EXPECT_EQ(result.exit_status, 1) << result.output;
    EXPECT_NE(result.output.find("Press Enter to C"), std::string::npos);
  }
}

// A warning that waits goes on.
TEST(Strict, TellsFailuresWithoutAnErrorLine) {
  const Workspace folder;
  folder.write("a_h.dat", DAT_FILE({2, 1}, "h", {{0, {1}, {5, 6}}, {1, {1}, {0, 0}}}));
  folder.write("a.2dm", "no mesh\n");
  const RunResult run = RUN(folder, WORDS("--strict -max a_h.dat"));
  EXPECT_EQ(run.output.find("ERROR"), std::string::npos);
  EXPECT_EQ(run.exit_status, 1);
}

TEST(Strict, GoesOnAfterWarnings) {
  const Workspace folder;
  MAKE_INPUTS_OF_WRITING_RUNS(folder);
  LiveRun run(folder, WORDS("--strict -dif -nowetdry a_d.dat b_d.dat c.dat -out r"));
  EXPECT_TRUE(run.ends_by_itself());
  const RunResult result = run.finish();
  EXPECT_EQ(result.exit_status, 0) << result.output;
  EXPECT_EQ(result.count_lines_with("WARNING - More than two files"), 1);
}

// A terminal: what was written to it, and what is left on its last line.
class Terminal {
 public:
  explicit Terminal(unsigned short columns) : master(::posix_openpt(O_RDWR | O_NOCTTY)) {
    ::grantpt(master);
    ::unlockpt(master);
    slave = ::open(::ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const winsize size{24, columns, 0, 0};
    ::ioctl(master, TIOCSWINSZ, &size);
    ::fcntl(master, F_SETFL, O_NONBLOCK);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() {
    ::close(slave);
    ::close(master);
  }

  int descriptor() const { return slave; }

  std::string written() {
    char buffer[4096];
    for (ssize_t got = 0; (got = ::read(master, buffer, sizeof buffer)) > 0;) {
      text.append(buffer, static_cast<std::size_t>(got));
    }
    return text;
  }

  // With carriage returns carried out.
  static std::string last_line_of(const std::string& text) {
    std::string line;
    std::size_t column = 0;
    for (const char c : text) {
      if (c == '\n') line.clear();
      if (c == '\r' || c == '\n') column = 0;
      if (c == '\r' || c == '\n') continue;
      if (line.size() <= column) line.resize(column + 1, ' ');
      line[column++] = c;
    }
    return line;
  }

 private:
  int master;
  int slave = -1;
  std::string text;
};

// A run that takes longer than half a second, since it waits for its mesh.
RunResult slow_run(const Workspace& folder, const std::string& options, int error_output) {
  folder.write("a_h.dat", DAT_FILE({2, 1}, "h", {{0, {1}, {5, 6}}, {1, {1}, {0, 0}}}));
  std::filesystem::remove(folder.path("late.2dm"));
  RunSettings settings;
  settings.error_output = error_output;
  LiveRun run(folder, WORDS("-max -b -2dm late.2dm " + options + " a_h.dat"), settings);
  EXPECT_TRUE(run.wait_for("Press Enter to try again\n"));
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  folder.write("late.2dm", "MESH2D\nE3T 1 1 2 1 1\nND 1 0 0 0\nND 2 1 0 0\n");
  run.type("\n");
  EXPECT_TRUE(run.ends_by_itself());
  return run.finish();
}

TEST(Progress, IsOneLineOfTheTerminalThatLeavesNothingBehind) {
  const Workspace folder;
  Terminal terminal(24);
  const RunResult shown = slow_run(folder, "", terminal.descriptor());
  const std::string text = terminal.written();
  EXPECT_NE(text.find("  0 % | 0 output times"), std::string::npos) << text;
  EXPECT_EQ(text.find('\n'), std::string::npos);
  const std::string left = Terminal::last_line_of(text);
  EXPECT_EQ(left.find_first_not_of(' '), std::string::npos) << left;
  EXPECT_LT(left.size(), 24U);
  // Standard output is the same without it.
  Terminal other(80);
  const RunResult hidden = slow_run(folder, "--no-progress", other.descriptor());
  EXPECT_EQ(other.written(), "");
  EXPECT_EQ(shown.output, hidden.output);
}

TEST(Progress, IsNotThereInShortRunsAndWhereNobodyLooks) {
  const Workspace folder;
  MAKE_INPUTS_OF_WRITING_RUNS(folder);
  Terminal terminal(80);
  RunSettings settings;
  settings.error_output = terminal.descriptor();
  EXPECT_TRUE(RUN(folder, WORDS("-b -max a_d.dat"), settings).has_line("Finished."));
  EXPECT_EQ(terminal.written(), "");
  const auto file = folder.path("standard_error");
  const int log = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  slow_run(folder, "", log);
  ::close(log);
  EXPECT_EQ(folder.read("standard_error"), "");
}

}  // namespace
}  // namespace quillet::testing
