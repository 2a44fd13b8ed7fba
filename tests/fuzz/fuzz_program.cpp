// Whole runs in this process. The input is one command line, then the files of the run: sections
// that begin with a line "@name" of a fixed set of names.
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "driver/run.h"
#include "fuzz/fuzz_input.h"

namespace quillet {
namespace {

namespace fs = std::filesystem;

class SilentConsole : public Console {
 public:
  void say(std::string_view line) override { has_spoken = has_spoken || !line.empty(); }
  bool wait_for_enter() override { return false; }
  bool has_spoken = false;
};

// A folder in memory, the current one of the process.
const fs::path& work_folder() {
  static const fs::path folder = [] {
    std::string name = "/dev/shm/quillet_fuzz_XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) std::abort();
    fs::current_path(name);
    std::atexit([] { fs::remove_all(fs::current_path()); });
    return fs::path(name);
  }();
  return folder;
}

bool is_file_of_a_run(const std::string& name) {
  for (const char* known :
       {"a_h.dat", "b_h.dat", "a_d.dat", "b_d.dat", "a_V.dat", "a.2dm", "b.2dm", "a.sup"}) {
    if (name == known) return true;
  }
  return false;
}

// Names lead nowhere outside the folder.
bool is_harmless(const std::string& argument) {
  return argument.find('/') == std::string::npos && argument.find('\\') == std::string::npos &&
         argument.find('\0') == std::string::npos;
}

void write_files(std::string_view text) {
  while (!text.empty() && text.front() == '@') {
    const auto line_end = text.find('\n');
    if (line_end == std::string_view::npos) return;
    const std::string name(text.substr(1, line_end - 1));
    text.remove_prefix(line_end + 1);
    const auto next = text.find("\n@");
    const std::string_view bytes = text.substr(0, next);
    if (is_file_of_a_run(name)) std::ofstream(name, std::ios::binary) << bytes;
    if (next == std::string_view::npos) return;
    text.remove_prefix(next + 1);
  }
}

}  // namespace
}  // namespace quillet

// Files in memory pay for every reserved page, most of the time of a run: larger space is not
// reserved, as on a file system that cannot.
extern "C" int fallocate(int file, int mode, off_t start, off_t bytes) {
  if (bytes <= 65536) return static_cast<int>(::syscall(SYS_fallocate, file, mode, start, bytes));
  errno = EOPNOTSUPP;
  return -1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace fs = std::filesystem;
  const std::string_view text = quillet::fuzz::TEXT_OF(data, size);
  const auto line_end = text.find('\n');
  std::istringstream words{std::string(text.substr(0, line_end))};
  std::vector<std::string> arguments;
  for (std::string word; words >> word && arguments.size() < 12;) {
    if (!quillet::is_harmless(word)) return -1;
    arguments.push_back(word);
  }
  for (const auto& entry : fs::directory_iterator(quillet::work_folder())) {
    fs::remove_all(entry.path());
  }
  if (line_end != std::string_view::npos) quillet::write_files(text.substr(line_end + 1));
  quillet::SilentConsole console;
  quillet::RUN_QUILLET(arguments, console);
  return console.has_spoken ? 0 : -1;
}
