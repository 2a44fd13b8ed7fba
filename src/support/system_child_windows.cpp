#include <windows.h>

#include <array>

#include "support/child_letters.h"
#include "support/interrupt.h"
#include "support/system_child.h"
#include "support/system_text_windows.h"

namespace quillet {
namespace {

constexpr const char* child_mark = "--child-of-itself";

// What the program starts of itself would be another program's whole run.
bool can_be_child = false;

struct Handle {
  HANDLE value = nullptr;
  ~Handle() {
    if (value != nullptr && value != INVALID_HANDLE_VALUE) ::CloseHandle(value);
  }
};

std::wstring own_path() {
  constexpr DWORD longest_path = 32768;
  std::wstring path(longest_path, L'\0');
  path.resize(::GetModuleFileNameW(nullptr, path.data(), longest_path));
  return path;
}

// A file's name holds no quotation mark.
std::wstring command_line(const ChildTask& task, const std::string& item) {
  const std::string words = std::string(child_mark) + " " + task.name + " \"" + item + "\"";
  return L"\"" + own_path() + L"\" " + WIDE_TEXT(words);
}

// The limit on memory is the system's; it ends with the job, as does the child.
HANDLE job_with(const ChildLimits& limits) {
  const HANDLE job = ::CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION rules{};
  rules.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE |
                                           JOB_OBJECT_LIMIT_PROCESS_MEMORY |
                                           JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
  rules.ProcessMemoryLimit = limits.memory;
  ::SetInformationJobObject(job, JobObjectExtendedLimitInformation, &rules, sizeof rules);
  return job;
}

// What the child writes to its standard output can be read from `letters`.
bool start(const ChildTask& task, const std::string& item, Handle& letters,
           PROCESS_INFORMATION& child) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  const Handle nowhere{::CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING,
                                     0, nullptr)};
  Handle childs_end;
  if (!::CreatePipe(&letters.value, &childs_end.value, &inherited, 0)) return false;
  ::SetHandleInformation(letters.value, HANDLE_FLAG_INHERIT, 0);
  std::wstring line = command_line(task, item);
  STARTUPINFOW settings{};
  settings.cb = sizeof settings;
  settings.dwFlags = STARTF_USESTDHANDLES;
  settings.hStdInput = settings.hStdError = nowhere.value;
  settings.hStdOutput = childs_end.value;
  constexpr DWORD flags = CREATE_NO_WINDOW | CREATE_SUSPENDED;
  return ::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr,
                          &settings, &child) != 0;
}

// How many letters there are to read now.
DWORD letters_waiting(HANDLE letters) {
  DWORD count = 0;
  return ::PeekNamedPipe(letters, nullptr, 0, nullptr, &count, nullptr) ? count : 0;
}

std::string read_letters(HANDLE letters) {
  std::array<char, 256> bytes{};
  DWORD count = 0;
  ::ReadFile(letters, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
  return {bytes.data(), count};
}

// What the child says until its end. False when it is stuck, or the run is interrupted.
bool follow(HANDLE process, HANDLE letters, std::chrono::milliseconds patience, std::string& said) {
  using Clock = std::chrono::steady_clock;
  constexpr DWORD look_every = 200;  // milliseconds
  Clock::time_point last_heard = Clock::now();
  for (;;) {
    const bool goes_on = ::WaitForSingleObject(process, look_every) == WAIT_TIMEOUT;
    while (letters_waiting(letters) > 0) {
      said += read_letters(letters);
      last_heard = Clock::now();
    }
    if (!goes_on) return true;
    if (INTERRUPTED() || Clock::now() - last_heard > patience) break;
  }
  ::TerminateProcess(process, 1);
  return false;
}

}  // namespace

// The child ends with its job.
struct Child::Process {
  Handle letters;
  Handle job;
  Handle id;
  std::chrono::milliseconds patience{};
  ChildEnd end;
};

Child::Child(const ChildTask& task, const std::string& item, const ChildLimits& limits)
    : process(std::make_unique<Process>()) {
  if (!can_be_child) return;
  process->patience = limits.patience;
  process->job.value = job_with(limits);
  PROCESS_INFORMATION child{};
  if (!start(task, item, process->letters, child)) {
    process->end = {ChildEnd::How::not_started, "error " + std::to_string(::GetLastError())};
    return;
  }
  process->id.value = child.hProcess;
  const Handle thread{child.hThread};
  ::AssignProcessToJobObject(process->job.value, child.hProcess);
  ::ResumeThread(thread.value);
}

Child::~Child() = default;

ChildEnd Child::wait() {
  using How = ChildEnd::How;
  if (process->id.value == nullptr) return process->end;
  std::string said;
  const bool is_over = follow(process->id.value, process->letters.value, process->patience, said);
  if (!is_over) return {How::stuck, {}};
  if (said.empty()) return {How::not_started, "it could not be set up"};
  return {IS_DONE(said) ? How::done : How::died, {}};
}

bool IS_CHILD_OF_ITSELF(const std::vector<std::string>& arguments, const ChildTask& task,
                        int& status) {
  can_be_child = true;
  if (arguments.size() != 3 || arguments[0] != child_mark || arguments[1] != task.name) {
    return false;
  }
  // A crash shows no window.
  ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  ::HeapSetInformation(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
  constexpr SystemFile standard_output = 1;
  WRITE_SOME(standard_output, &child_started, 1);
  ChildReport report(standard_output);
  task.perform(arguments[2], report);
  status = 0;
  return true;
}

}  // namespace quillet
