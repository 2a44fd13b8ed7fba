// The bytes of a file that HDF5 has open, without HDF5: for whoever knows where things lie in it,
// in any thread.
#pragma once

#include <cstdint>
#include <memory>

#include "support/system_files.h"

namespace quillet {

class XfStoredFile {
 public:
  XfStoredFile() = default;
  // HDF5's own handle, which is left alone, and the bytes of the file as HDF5 found them.
  XfStoredFile(SystemFile opened, std::uint64_t size);

  std::uint64_t size() const { return byte_count; }
  // False where the system gives no second handle.
  bool is_readable() const { return handle != nullptr; }
  // False unless all bytes could be read.
  bool read(std::uint64_t position, void* destination, std::uint64_t count) const;

 private:
  std::shared_ptr<const SystemFile> handle;  // of whatever is still read, too
  std::uint64_t byte_count = 0;
};

}  // namespace quillet
