// Trials of files in a process of their own, and the process itself.
#include "xf/xf_trial.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <thread>

#include "in_crew_of.h"
#include "support/system_child.h"
#include "xf_test_files.h"

namespace quillet {
namespace {

using How = ChildEnd::How;
using std::chrono::milliseconds;

using Work = void (*)(const std::string& item, ChildReport& report);

constexpr std::size_t plenty = std::size_t{1} << 30;

ChildEnd run(Work work, milliseconds patience = milliseconds(20000), std::size_t memory = plenty) {
  return Child({"test", work}, "item", {patience, memory}).wait();
}

void wait_forever() {
  for (;;) std::this_thread::sleep_for(milliseconds(1000));
}

TEST(ChildTasks, AreDoneWhenTheySaySo) {
  const Work work = [](const std::string& item, ChildReport& report) {
    std::puts(item.c_str());
    if (item == "item") report.done();
  };
  EXPECT_EQ(run(work).how, How::done);
  EXPECT_EQ(run([](const std::string&, ChildReport&) {}).how, How::died);
  EXPECT_EQ(run([](const std::string&, ChildReport&) { throw std::bad_alloc(); }).how, How::died);
}

void exit_well(int /*signal*/) {
  ::_exit(0);
}

// A handler of the parent's would take the crash for one of its own.
TEST(ChildTasks, DieOfTheirCrashes) {
  void (*const before)(int) = std::signal(SIGSEGV, exit_well);
  EXPECT_EQ(run([](const std::string&, ChildReport&) { std::raise(SIGSEGV); }).how, How::died);
  std::signal(SIGSEGV, before);
}

TEST(ChildTasks, AreStuckOnlyWithoutProgress) {
  const Work nothing = [](const std::string&, ChildReport&) { wait_forever(); };
  EXPECT_EQ(run(nothing, milliseconds(50)).how, How::stuck);
  const Work slow = [](const std::string&, ChildReport& report) {
    for (int i = 0; i < 25; ++i) {
      std::this_thread::sleep_for(milliseconds(100));
      report.progress();
    }
    report.done();
  };
  EXPECT_EQ(run(slow, milliseconds(2000)).how, How::done);
}

#ifndef __SANITIZE_ADDRESS__
TEST(ChildTasks, HaveSoMuchMemoryAndNoMore) {
  const Work work = [](const std::string&, ChildReport& report) {
    const std::vector<char> memory(std::size_t{100} << 20, 'x');
    if (memory.back() == 'x') report.done();
  };
  EXPECT_EQ(run(work).how, How::done);
  EXPECT_EQ(run(work, milliseconds(20000), std::size_t{10} << 20).how, How::died);
}
#endif

TEST(ChildTasks, AreNotStartedWhereNothingCanBeOpened) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const XfStatus tried = XF_TRY_FILE("a.xmdf");
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  expect_failure(tried, "cannot be started: Too many open files");
}

// The work writes its process into a pipe that stays open as long as it lives.
int pipe_of_the_work[2] = {-1, -1};

TEST(ChildTasks, DoNotOutliveTheirParent) {
  ASSERT_EQ(::pipe(pipe_of_the_work), 0);
  const pid_t parent = ::fork();
  if (parent == 0) {
    run([](const std::string&, ChildReport&) {
      ::close(pipe_of_the_work[0]);
      (void)!::write(pipe_of_the_work[1], "x", 1);
      wait_forever();
    });
    ::_exit(0);
  }
  ::close(pipe_of_the_work[1]);
  char letter = 0;
  EXPECT_EQ(::read(pipe_of_the_work[0], &letter, 1), 1);
  ::kill(parent, SIGKILL);
  ::waitpid(parent, nullptr, 0);
  EXPECT_EQ(::read(pipe_of_the_work[0], &letter, 1), 0);
  ::close(pipe_of_the_work[0]);
}

class XfTrialTest : public XfTest {
 protected:
  XfTrialTest() {
    make_file(path("sound.xmdf"), [](hid_t file) {
      make_plain_dataset(file, "d", "DATASET SCALAR", {2, 3});
    });
  }
};

TEST_F(XfTrialTest, PassesOverWhatCannotBeOpened) {
  folder.write("text.xmdf", "no HDF5 file");
  ASSERT_EQ(::mkfifo(path("pipe.xmdf").c_str(), 0600), 0);
  for (const char* name : {"absent.xmdf", "text.xmdf", "pipe.xmdf", "", "sound.xmdf"}) {
    EXPECT_OK(XF_TRY_FILE(path(name)));
  }
}

// The heap of the names of the root's members, said to be longer than memory, which HDF5 copies.
TEST_F(XfTrialTest, FailsWhereHdf5DoesNotSurvive) {
  std::string bytes = folder.read("sound.xmdf");
  folder.write("heap.xmdf", bytes.replace(bytes.find("HEAP") + 8, 8, 8, '\xff'));
  expect_failure(XF_TRY_FILE(path("heap.xmdf")), "found damage that HDF5 cannot cope with");
}

// Of a file with a damaged group those that are in the scope can be opened, and the damage is found
// by whoever comes to it.
void expect_found_when_opened(const std::string& name, const std::string& damaged) {
  const XfTrialScope scope{{"C", "no path"}};
  const std::string found = "found damage that HDF5 cannot cope with";
  const XfStatus tried = XF_TRY_FILE(name, scope);
  if (damaged == "root" || damaged == "a" || damaged == "c") return expect_failure(tried, found);
  EXPECT_OK(tried);
  XfFile file;
  XfGroup group;
  std::vector<std::string> paths;
  EXPECT_OK(XF_OPEN_FILE(name, file, scope));
  EXPECT_OK(XF_GET_SCALAR_DATASET_PATHS(file, paths));
  EXPECT_OK(XF_OPEN_GROUP(file, "a", group));
  EXPECT_OK(XF_OPEN_GROUP(file, "c", group));
  expect_failure(XF_OPEN_GROUP(file, damaged, group), found);
}

// The same of every group, in a file that is large enough to be tried by several children.
TEST_F(XfTrialTest, TriesEveryDatasetOfEveryFile) {
  make_file(path("large.xmdf"), [](hid_t file) {
    const std::vector<float> version{2.1F};
    make_member(file, "File Version", H5T_IEEE_F32LE, {{1}, {}, {}}, H5T_NATIVE_FLOAT, version);
    for (const char* const name : {"a", "b", "c", "d", "e"}) {
      make_plain_dataset(file, name, "DATASET SCALAR", {2, 40000});
    }
  });
  const std::string sound = folder.read("large.xmdf");
  const std::vector<std::string> names{path("sound.xmdf"), path("heap.xmdf"), path("sound.xmdf")};
  std::size_t heaps = 0;
  for (auto heap = sound.find("HEAP"); heap != std::string::npos;
       heap = sound.find("HEAP", heap + 1)) {
    folder.write("heap.xmdf", std::string(sound).replace(heap + 8, 8, 8, '\xff'));
    for (const int threads : {1, 2, 8}) {
      test::in_crew_of(threads, [&] {
        const std::vector<XfStatus> tried = XF_TRY_FILES(names);
        ASSERT_EQ(tried.size(), 2U);
        EXPECT_OK(tried[0]);
        expect_failure(tried[1], "found damage that HDF5 cannot cope with");
      });
    }
    const std::array groups{"root", "a", "b", "c", "d", "e"};
    expect_found_when_opened(names[1], groups.at(heaps));
    ++heaps;
  }
  EXPECT_EQ(heaps, 6U);
}

}  // namespace
}  // namespace quillet
