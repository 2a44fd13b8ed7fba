// What a fuzz target is given, as the files that the readers open.
#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace quillet::fuzz {

inline void PUT(int descriptor, const std::uint8_t* data, std::size_t size) {
  const auto length = static_cast<ssize_t>(size);
  if (::ftruncate(descriptor, 0) != 0 || ::pwrite(descriptor, data, size, 0) != length)
    std::abort();
}

// One file in memory, under a name that can be opened any number of times.
class MemoryFile {
 public:
  MemoryFile() : descriptor(::memfd_create("fuzz", MFD_CLOEXEC)) {
    if (descriptor < 0) std::abort();
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { ::close(descriptor); }

  std::string name() const { return "/proc/self/fd/" + std::to_string(descriptor); }

  void set(const std::uint8_t* data, std::size_t size) { PUT(descriptor, data, size); }

 private:
  int descriptor;
};

// The same under the name of a file: HDF5 asks for the real path of what it opens.
class NamedMemoryFile {
 public:
  NamedMemoryFile() {
    for (const char* folder : {"/dev/shm", "/tmp"}) {
      path = std::string(folder) + "/quillet-fuzz-XXXXXX";
      descriptor = ::mkstemp(path.data());
      if (descriptor >= 0) return;
    }
    std::abort();
  }
  NamedMemoryFile(const NamedMemoryFile&) = delete;
  NamedMemoryFile& operator=(const NamedMemoryFile&) = delete;
  ~NamedMemoryFile() {
    ::close(descriptor);
    ::unlink(path.c_str());
  }

  const std::string& name() const { return path; }

  void set(const std::uint8_t* data, std::size_t size) { PUT(descriptor, data, size); }

 private:
  std::string path;
  int descriptor = -1;
};

inline std::string_view TEXT_OF(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace quillet::fuzz
