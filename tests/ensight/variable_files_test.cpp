// A disk that is full: the lines and files of the output time that could not be written are those
// of one thread, and nothing is left of the output times that helpers had begun.
#include "ensight/variable_files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "captured_console.h"
#include "in_crew_of.h"
#include "program_runner.h"

namespace quillet {
namespace {

// Files of this process cannot grow beyond it for as long as it lives.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
  }

 private:
  void (*handler)(int);
  rlimit before{};
};

class FilesOfCrews : public ::testing::TestWithParam<int> {};

TEST_P(FilesOfCrews, EndWithTheFirstThatCannotBeWritten) {
  constexpr std::int32_t node_count = 10000;  // 130 KB of text
  const testing::Workspace folder;
  const std::string base = folder.path("o").string();
  EnsightMesh mesh;
  mesh.node_count = node_count;
  std::string console;
  test::in_crew_of(GetParam(), [&] {
    const FullDisk disk(100000);
    console = test::console_of([&] {
      ExportSteps steps(1 << 30);
      VariableFiles files(mesh, ValuePlace::nodes, node_count, steps);
      files.begin_dataset("Depth", false);
      for (int i = 1; i <= 100; ++i) {
        files.next_record().nd.x.assign(node_count, 1.5F);
        files.write(base + std::to_string(i));
      }
      steps.tell_all();
    });
  });
  EXPECT_EQ(console, "Opening outfile: " + base + "1\n\nERROR - Writing file \"" + base +
                         "1\": File too large\n\nPress Enter to Close\n");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"o1"});
}

INSTANTIATE_TEST_SUITE_P(Threads, FilesOfCrews, ::testing::Values(1, 2, 3, 8));

}  // namespace
}  // namespace quillet
