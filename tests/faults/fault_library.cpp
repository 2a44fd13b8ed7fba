// Preloaded into the program under test: makes one of its system calls fail. The environment says
// which, QUILLET_FAULT=<call>:<n>:<error number>, the n-th counted from 1; a file named by
// QUILLET_FAULT_TOOK_PLACE is created then. Calls on standard input, output and error are left
// alone.
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct Fault {
  char call[16] = "";
  long countdown = 0;
  int error = 0;
};

Fault& fault() {
  static Fault wanted;
  static bool is_read = false;
  if (!is_read) {
    is_read = true;
    const char* const text = ::getenv("QUILLET_FAULT");
    if (text != nullptr) {
      ::sscanf(text, "%15[^:]:%ld:%d", wanted.call, &wanted.countdown, &wanted.error);
    }
  }
  return wanted;
}

void report() {
  const char* const name = ::getenv("QUILLET_FAULT_TOOK_PLACE");
  if (name == nullptr) return;
  const long file = ::syscall(SYS_openat, AT_FDCWD, name, O_WRONLY | O_CREAT, 0600);
  ::syscall(SYS_close, file);
}

bool fails(const char* call) {
  Fault& wanted = fault();
  if (::strcmp(call, wanted.call) != 0 || --wanted.countdown != 0) return false;
  report();
  errno = wanted.error;
  return true;
}

bool fails_on(const char* call, int descriptor) {
  return descriptor > STDERR_FILENO && fails(call);
}

int open_unless_failing(const char* name, int flags, va_list arguments) {
  if (fails("open")) return -1;
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, name, flags, mode));
}

}  // namespace

extern "C" {

void* __libc_malloc(size_t size);

int open(const char* name, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const int file = open_unless_failing(name, flags, arguments);
  va_end(arguments);
  return file;
}
int open64(const char* name, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const int file = open_unless_failing(name, flags, arguments);
  va_end(arguments);
  return file;
}
int close(int descriptor) {
  const bool is_failing = fails_on("close", descriptor);
  const int error = errno;
  const long result = ::syscall(SYS_close, descriptor);
  if (is_failing) errno = error;
  return is_failing ? -1 : static_cast<int>(result);
}
ssize_t write(int descriptor, const void* data, size_t size) {
  if (fails_on("write", descriptor)) return -1;
  return ::syscall(SYS_write, descriptor, data, size);
}
ssize_t pwrite(int descriptor, const void* data, size_t size, off_t place) {
  if (fails_on("pwrite", descriptor)) return -1;
  return ::syscall(SYS_pwrite64, descriptor, data, size, place);
}
ssize_t pwrite64(int descriptor, const void* data, size_t size, off64_t place) {
  return pwrite(descriptor, data, size, place);
}
ssize_t read(int descriptor, void* data, size_t size) {
  if (fails_on("read", descriptor)) return -1;
  return ::syscall(SYS_read, descriptor, data, size);
}
ssize_t pread(int descriptor, void* data, size_t size, off_t place) {
  if (fails_on("pread", descriptor)) return -1;
  return ::syscall(SYS_pread64, descriptor, data, size, place);
}
ssize_t pread64(int descriptor, void* data, size_t size, off64_t place) {
  return pread(descriptor, data, size, place);
}
int ftruncate(int descriptor, off_t size) {
  if (fails_on("ftruncate", descriptor)) return -1;
  return static_cast<int>(::syscall(SYS_ftruncate, descriptor, size));
}
int ftruncate64(int descriptor, off64_t size) {
  return ftruncate(descriptor, size);
}
int fallocate(int descriptor, int mode, off_t place, off_t size) {
  if (fails_on("fallocate", descriptor)) return -1;
  return static_cast<int>(::syscall(SYS_fallocate, descriptor, mode, place, size));
}
int fallocate64(int descriptor, int mode, off64_t place, off64_t size) {
  return fallocate(descriptor, mode, place, size);
}
int rename(const char* from, const char* to) {
  if (fails("rename")) return -1;
  return static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
void* malloc(size_t size) {
  if (fails("malloc")) return nullptr;
  return __libc_malloc(size);
}

}  // extern "C"
