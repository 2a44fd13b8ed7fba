#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "support/system_files.h"

namespace quillet {

namespace {

std::string reason_for_irregular(const struct stat& status) {
  return S_ISDIR(status.st_mode) ? std::strerror(EISDIR) : "Not a regular file";
}

// The file when it is a regular one; else it is closed.
SystemFile regular_only(int file, struct stat& status, std::string& reason) {
  if (file < 0 || ::fstat(file, &status) != 0) {
    reason = SYSTEM_REASON();
  } else if (S_ISREG(status.st_mode)) {
    return file;
  } else {
    reason = reason_for_irregular(status);
  }
  if (file >= 0) ::close(file);
  return no_file;
}

}  // namespace

std::string SYSTEM_REASON() {
  return std::strerror(errno);
}

SystemFile OPEN_REGULAR_FILE(const std::string& name, std::int64_t& size, std::string& reason) {
  struct stat status {};
  const int file =
      regular_only(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK), status, reason);
  size = status.st_size;
  // So the system reads far enough ahead that a look at the head of the next output time, before
  // the values of this one, does not make it stop.
#ifdef POSIX_FADV_SEQUENTIAL
  if (file >= 0) ::posix_fadvise(file, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
  return file;
}

// Reads here tell the system their position.
SystemFile SECOND_SYSTEM_FILE(SystemFile file) {
  return ::fcntl(file, F_DUPFD_CLOEXEC, 0);
}

SystemFile OPEN_OUTPUT_FILE(const std::string& name, std::string& reason) {
  constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  struct stat status {};
  return regular_only(::open(name.c_str(), flags, 0666), status, reason);
}

SystemFile CREATE_OUTPUT_FILE(const std::string& name, std::string& reason) {
  constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK;
  struct stat status {};
  if (!MAY_BE_REPLACED(name, reason)) return no_file;
  return regular_only(::open(name.c_str(), flags, 0666), status, reason);
}

bool LOCK_SYSTEM_FILE(SystemFile file) {
  return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool IS_LOCKED_BY_WRITER(SystemFile file) {
  if (::flock(file, LOCK_SH | LOCK_NB) != 0) return errno == EWOULDBLOCK;
  ::flock(file, LOCK_UN);
  return false;
}

std::int64_t SYSTEM_FILE_SIZE(SystemFile file) {
  struct stat status {};
  return ::fstat(file, &status) == 0 ? std::int64_t{status.st_size} : -1;
}

bool NAMES_SYSTEM_FILE(const std::string& name, SystemFile file) {
  struct stat opened {};
  struct stat named {};
  return ::fstat(file, &opened) == 0 && ::lstat(name.c_str(), &named) == 0 &&
         named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

// Told at a close, so a second descriptor is closed.
bool SYSTEM_FILE_IS_WRITTEN(SystemFile file) {
  const int second = ::dup(file);
  return second >= 0 && ::close(second) == 0;
}

bool CLOSE_SYSTEM_FILE(SystemFile file) {
  return ::close(file) == 0;
}

std::int64_t READ_SOME_AT(SystemFile file, std::int64_t position, void* destination,
                          std::int64_t count) {
  for (;;) {
    const auto got = ::pread(file, destination, static_cast<std::size_t>(count), position);
    if (got >= 0 || errno != EINTR) return got;
  }
}

std::int64_t WRITE_SOME(SystemFile file, const void* data, std::int64_t count) {
  for (;;) {
    const auto put = ::write(file, data, static_cast<std::size_t>(count));
    if (put >= 0 || errno != EINTR) return put;
  }
}

bool GO_TO_START_OF_FILE(SystemFile file) {
  return ::lseek(file, 0, SEEK_SET) == 0;
}

// The plain system call: the library's fallback would write every block.
#ifdef __linux__
bool RESERVE_FILE_ROOM(SystemFile file, std::int64_t bytes) {
  return ::fallocate(file, 0, 0, bytes) == 0;
}

bool RESERVE_BEYOND_END(SystemFile file, std::int64_t size, std::int64_t bytes) {
  return ::fallocate(file, FALLOC_FL_KEEP_SIZE, size, bytes) == 0;
}
#else
bool RESERVE_FILE_ROOM(SystemFile, std::int64_t) {
  return false;
}

bool RESERVE_BEYOND_END(SystemFile, std::int64_t, std::int64_t) {
  return false;
}
#endif

bool CUT_FILE(SystemFile file, std::int64_t bytes) {
  return ::ftruncate(file, bytes) == 0;
}

bool MAY_BE_REPLACED(const std::string& name, std::string& reason) {
  struct stat status {};
  if (::stat(name.c_str(), &status) != 0 || S_ISREG(status.st_mode)) return true;
  reason = reason_for_irregular(status);
  return false;
}

bool RENAME_FILE(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

bool REMOVE_FILE(const std::string& name) {
  return ::unlink(name.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

}  // namespace quillet
