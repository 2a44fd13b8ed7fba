#include <windows.h>

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
std::wstring command_line(const ChildTask& task, const std::string& argument) {
  const std::string words = std::string(child_mark) + " " + task.name + " \"" + argument + "\"";
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

bool start(const ChildTask& task, const std::string& argument, HANDLE nowhere,
           PROCESS_INFORMATION& child) {
  std::wstring line = command_line(task, argument);
  STARTUPINFOW settings{};
  settings.cb = sizeof settings;
  settings.dwFlags = STARTF_USESTDHANDLES;
  settings.hStdInput = settings.hStdOutput = settings.hStdError = nowhere;
  constexpr DWORD flags = CREATE_NO_WINDOW | CREATE_SUSPENDED;
  return ::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr,
                          &settings, &child) != 0;
}

// Seconds of the processor.
double time_used(HANDLE process) {
  FILETIME start, end, kernel, user;
  if (!::GetProcessTimes(process, &start, &end, &kernel, &user)) return 0;
  const auto ticks = [](const FILETIME& time) {
    return 4294967296.0 * time.dwHighDateTime + time.dwLowDateTime;
  };
  constexpr double seconds_per_tick = 1e-7;
  return (ticks(kernel) + ticks(user)) * seconds_per_tick;
}

bool ends_well(HANDLE process, const ChildLimits& limits) {
  constexpr DWORD look_every = 200;  // milliseconds
  while (::WaitForSingleObject(process, look_every) == WAIT_TIMEOUT) {
    if (time_used(process) < limits.seconds) continue;
    ::TerminateProcess(process, 1);
    return false;
  }
  DWORD status = 0;
  return !::GetExitCodeProcess(process, &status) || status == 0;
}

}  // namespace

bool SUCCEEDS_IN_CHILD(const ChildTask& task, const std::string& argument,
                       const ChildLimits& limits) {
  if (!can_be_child) return true;
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  const Handle nowhere{::CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING,
                                     0, nullptr)};
  const Handle job{job_with(limits)};
  PROCESS_INFORMATION child{};
  if (!start(task, argument, nowhere.value, child)) return true;
  const Handle process{child.hProcess};
  const Handle thread{child.hThread};
  ::AssignProcessToJobObject(job.value, process.value);
  ::ResumeThread(thread.value);
  return ends_well(process.value, limits);
}

bool IS_CHILD_OF_ITSELF(const std::vector<std::string>& arguments, const ChildTask& task,
                        int& status) {
  can_be_child = true;
  if (arguments.size() != 3 || arguments[0] != child_mark || arguments[1] != task.name) {
    return false;
  }
  // A crash shows no window.
  ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  status = task.perform(arguments[2]) ? 0 : 1;
  return true;
}

}  // namespace quillet
