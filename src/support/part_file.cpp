#include "support/part_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "support/console.h"
#include "support/run_tally.h"
#include "support/text.h"

namespace quillet {
namespace {

std::string reason_of(int error) {
  return std::strerror(error);
}

// Another run may have completed or removed the file between its opening and its locking here: then
// the name stands for another file, or for none.
bool stands_under(const std::string& name, const struct stat& opened) {
  struct stat named {};
  return ::lstat(name.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
         named.st_ino == opened.st_ino;
}

}  // namespace

std::string PART_NAME(const std::string& file_name) {
  return file_name + ".part";
}

PartFile::~PartFile() {
  close();
}

std::string PartFile::create(const std::string& name) {
  final_name = name;
  part_name = PART_NAME(name);
  // Noticed now, not when all the work is done.
  std::error_code error;
  if (std::filesystem::is_directory(final_name, error)) return reason_of(EISDIR);
  std::string reason = open_and_lock();
  // Emptied only under the lock: another run may be writing it.
  if (reason.empty() && ::ftruncate(descriptor, 0) != 0) reason = reason_of(errno);
  if (!reason.empty()) close();
  return reason;
}

std::string PartFile::open_and_lock() {
  for (;;) {
    descriptor =
        ::open(part_name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
    if (descriptor < 0) return reason_of(errno);
    struct stat opened {};
    if (::fstat(descriptor, &opened) != 0) return reason_of(errno);
    if (!S_ISREG(opened.st_mode)) return "Not a regular file";
    // A file system without locks is no error.
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
      FAIL_RUN("ERROR - Output file is being written by another run: " + QUOTED(final_name));
    }
    if (stands_under(part_name, opened)) return "";
    close();
  }
}

// A system may tell only at a close what it could not write, so a second handle is closed before
// the file gets its name. The first keeps the lock until then: the next run makes a file of its
// own.
std::string PartFile::complete() {
  const int second = ::dup(descriptor);
  if (second < 0 || ::close(second) != 0) return reason_of(errno);
  if (std::rename(part_name.c_str(), final_name.c_str()) != 0) return reason_of(errno);
  close();
  RUN_TALLY().completed_outputs.push_back(final_name);
  return "";
}

void PartFile::remove() {
  std::remove(part_name.c_str());
  close();
}

void PartFile::close() {
  if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
}

}  // namespace quillet
