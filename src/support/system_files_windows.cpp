#include <windows.h>
// windows.h comes first: the others need its types.
#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "support/system_files.h"
#include "support/system_text_windows.h"

namespace quillet {
namespace {

// Without long paths a name has room for 259 characters, and the system calls a longer one a path
// that it cannot find.
constexpr std::size_t longest_plain_name = 259;

bool is_long(const std::wstring& name) {
  return ::GetFullPathNameW(name.c_str(), 0, nullptr, nullptr) > longest_plain_name;
}

// The nearest of the numbers that POSIX systems have.
int error_number(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return ENOENT;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
      return EBUSY;
    case ERROR_NOT_READY:
    case ERROR_DEV_NOT_EXIST:
      return ENODEV;
    case ERROR_ACCESS_DENIED:
    case ERROR_CURRENT_DIRECTORY:
      return EACCES;
    case ERROR_WRITE_PROTECT:
      return EROFS;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_FILE_TOO_LARGE:
      return EFBIG;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return ENOMEM;
    case ERROR_TOO_MANY_OPEN_FILES:
      return EMFILE;
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_BUFFER_OVERFLOW:
      return ENAMETOOLONG;
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
      return EINVAL;
    default:
      return EIO;
  }
}

bool note_error(DWORD error) {
  errno = error_number(error);
  return false;
}

bool note_error_of(const std::wstring& name) {
  note_error(::GetLastError());
  if (errno == ENOENT && is_long(name)) errno = ENAMETOOLONG;
  return false;
}

bool tells_absence(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

HANDLE handle_of(SystemFile file) {
  return reinterpret_cast<HANDLE>(::_get_osfhandle(file));
}

DWORD piece(std::int64_t count) {
  constexpr std::int64_t most_at_a_time = std::int64_t{1} << 30;
  return static_cast<DWORD>(std::min(count, most_at_a_time));
}

// Reserved names lead to devices whatever folder and extension they have.
bool is_on_disk(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION about{};
  if (::GetFileType(handle) != FILE_TYPE_DISK || !::GetFileInformationByHandle(handle, &about)) {
    return false;
  }
  return (about.dwFileAttributes &
          (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
}

constexpr const char* not_regular = "Not a regular file";
constexpr DWORD share_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool has_attribute(const std::wstring& name, DWORD attribute) {
  const DWORD attributes = ::GetFileAttributesW(name.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}

bool is_folder(const std::wstring& name) {
  return has_attribute(name, FILE_ATTRIBUTE_DIRECTORY);
}

// The handle's descriptor, which owns it; there are 2048 in a process.
SystemFile descriptor_of(HANDLE handle, std::string& reason) {
  const int file =
      ::_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_BINARY | _O_NOINHERIT);
  if (file >= 0) return file;
  reason = SYSTEM_REASON();
  ::CloseHandle(handle);
  return no_file;
}

// Opens what is a regular file: no folder, no device and, when asked so, no link.
SystemFile open_on_disk(const std::string& name, DWORD access, DWORD disposition, DWORD flags,
                        std::string& reason) {
  const std::wstring wide_name = WIDE_TEXT(name);
  const HANDLE handle =
      ::CreateFileW(wide_name.c_str(), access, share_all, nullptr, disposition, flags, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    note_error_of(wide_name);
    reason = is_folder(wide_name) ? std::strerror(EISDIR) : SYSTEM_REASON();
    return no_file;
  }
  if (!is_on_disk(handle)) {
    ::CloseHandle(handle);
    reason = not_regular;
    return no_file;
  }
  return descriptor_of(handle, reason);
}

bool identity_of(HANDLE handle, BY_HANDLE_FILE_INFORMATION& identity) {
  return handle != INVALID_HANDLE_VALUE && ::GetFileInformationByHandle(handle, &identity) != 0;
}

}  // namespace

std::string SYSTEM_REASON() {
  switch (errno) {
    case EBUSY:
      return "another program holds the file open";
    case ENAMETOOLONG:
      return "File name too long";
    case EINVAL:
      return "Windows does not allow this name for a file";
    case EFBIG:
      return "File too large";
    default:
      return std::strerror(errno);
  }
}

SystemFile OPEN_REGULAR_FILE(const std::string& name, std::int64_t& size, std::string& reason) {
  const SystemFile file = open_on_disk(name, GENERIC_READ, OPEN_EXISTING, 0, reason);
  LARGE_INTEGER length{};
  if (file == no_file) return no_file;
  if (!::GetFileSizeEx(handle_of(file), &length)) {
    note_error(::GetLastError());
    reason = SYSTEM_REASON();
    ::_close(file);
    return no_file;
  }
  size = length.QuadPart;
  return file;
}

// Two descriptors of one handle would share its position.
SystemFile SECOND_SYSTEM_FILE(SystemFile file) {
  const HANDLE second = ::ReOpenFile(handle_of(file), GENERIC_READ, share_all, 0);
  std::string reason;
  return second == INVALID_HANDLE_VALUE ? no_file : descriptor_of(second, reason);
}

SystemFile OPEN_OUTPUT_FILE(const std::string& name, std::string& reason) {
  return open_on_disk(name, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, FILE_FLAG_OPEN_REPARSE_POINT,
                      reason);
}

SystemFile CREATE_OUTPUT_FILE(const std::string& name, std::string& reason) {
  return open_on_disk(name, GENERIC_WRITE, CREATE_ALWAYS, 0, reason);
}

// One byte far beyond the end of any file: a lock keeps others from what it covers, and nobody is
// to be kept from the data.
bool LOCK_SYSTEM_FILE(SystemFile file) {
  OVERLAPPED where{};
  where.OffsetHigh = 0x40000000;
  constexpr DWORD at_once = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
  return ::LockFileEx(handle_of(file), at_once, 0, 1, 0, &where) ||
         (::GetLastError() != ERROR_LOCK_VIOLATION && ::GetLastError() != ERROR_IO_PENDING);
}

// The system itself keeps others from a file that is locked.
bool IS_LOCKED_BY_WRITER(SystemFile) {
  return false;
}

std::int64_t SYSTEM_FILE_SIZE(SystemFile file) {
  LARGE_INTEGER length{};
  return ::GetFileSizeEx(handle_of(file), &length) ? std::int64_t{length.QuadPart} : -1;
}

bool NAMES_SYSTEM_FILE(const std::string& name, SystemFile file) {
  const HANDLE named = ::CreateFileW(WIDE_TEXT(name).c_str(), 0, share_all, nullptr, OPEN_EXISTING,
                                     FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  BY_HANDLE_FILE_INFORMATION a{};
  BY_HANDLE_FILE_INFORMATION b{};
  const bool both = identity_of(named, a) && identity_of(handle_of(file), b);
  if (named != INVALID_HANDLE_VALUE) ::CloseHandle(named);
  return both && a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
         a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow;
}

// Every write tells at once.
bool SYSTEM_FILE_IS_WRITTEN(SystemFile) {
  return true;
}

bool CLOSE_SYSTEM_FILE(SystemFile file) {
  return ::_close(file) == 0;
}

std::int64_t READ_SOME_AT(SystemFile file, std::int64_t position, void* destination,
                          std::int64_t count) {
  OVERLAPPED where{};
  where.Offset = static_cast<DWORD>(position & 0xFFFFFFFF);
  where.OffsetHigh = static_cast<DWORD>(position >> 32);
  DWORD got = 0;
  if (::ReadFile(handle_of(file), destination, piece(count), &got, &where)) return got;
  if (::GetLastError() == ERROR_HANDLE_EOF) return 0;
  note_error(::GetLastError());
  return -1;
}

std::int64_t WRITE_SOME(SystemFile file, const void* data, std::int64_t count) {
  DWORD put = 0;
  if (!::WriteFile(handle_of(file), data, piece(count), &put, nullptr)) {
    note_error(::GetLastError());
    return -1;
  }
  if (put == 0 && count > 0) {
    errno = ENOSPC;
    return -1;
  }
  return put;
}

bool GO_TO_START_OF_FILE(SystemFile file) {
  return ::SetFilePointerEx(handle_of(file), LARGE_INTEGER{}, nullptr, FILE_BEGIN) ||
         note_error(::GetLastError());
}

bool RESERVE_FILE_ROOM(SystemFile file, std::int64_t bytes) {
  FILE_ALLOCATION_INFO room{};
  room.AllocationSize.QuadPart = bytes;
  return ::SetFileInformationByHandle(handle_of(file), FileAllocationInfo, &room, sizeof room) ||
         note_error(::GetLastError());
}

bool RESERVE_BEYOND_END(SystemFile file, std::int64_t size, std::int64_t bytes) {
  return RESERVE_FILE_ROOM(file, size + bytes);
}

bool CUT_FILE(SystemFile file, std::int64_t bytes) {
  FILE_END_OF_FILE_INFO end{};
  end.EndOfFile.QuadPart = bytes;
  return ::SetFileInformationByHandle(handle_of(file), FileEndOfFileInfo, &end, sizeof end) ||
         note_error(::GetLastError());
}

bool MAY_BE_REPLACED(const std::string& name, std::string& reason) {
  const std::wstring wide_name = WIDE_TEXT(name);
  if (has_attribute(wide_name, FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) {
    reason = std::strerror(is_folder(wide_name) ? EISDIR : EACCES);
    return false;
  }
  const HANDLE handle =
      ::CreateFileW(wide_name.c_str(), DELETE, share_all, nullptr, OPEN_EXISTING, 0, nullptr);
  if (handle != INVALID_HANDLE_VALUE) return ::CloseHandle(handle);
  if (tells_absence(::GetLastError()) || note_error_of(wide_name)) return true;
  reason = SYSTEM_REASON();
  return false;
}

bool RENAME_FILE(const std::string& from, const std::string& to) {
  const std::wstring new_name = WIDE_TEXT(to);
  return ::MoveFileExW(WIDE_TEXT(from).c_str(), new_name.c_str(), MOVEFILE_REPLACE_EXISTING) ||
         note_error_of(new_name);
}

// A file that is still open, here or elsewhere, goes when it is closed.
bool REMOVE_FILE(const std::string& name) {
  const std::wstring wide_name = WIDE_TEXT(name);
  return ::DeleteFileW(wide_name.c_str()) || tells_absence(::GetLastError()) ||
         note_error_of(wide_name);
}

}  // namespace quillet
