// The bytes of a file that HDF5 has open, without HDF5: for whoever knows where things lie in it,
// in any thread.
#pragma once

#include <hdf5.h>

#include <cstdint>
#include <memory>

#include "support/system_files.h"

namespace quillet {

class XfStoredFile {
 public:
  XfStoredFile() = default;
  // HDF5's file, whose own handle is left alone, with the bytes that HDF5 found there.
  explicit XfStoredFile(hid_t file);

  std::uint64_t size() const { return byte_count; }
  // False where addresses are none of 64 bits from the file's beginning, and where the system gives
  // no second handle.
  bool is_readable() const { return handle != nullptr; }
  // False unless all bytes could be read.
  bool read(std::uint64_t position, void* destination, std::uint64_t count) const;

 private:
  std::shared_ptr<const SystemFile> handle;  // of whatever is still read, too
  std::uint64_t byte_count = 0;
};

// The system's handle behind HDF5's usual file driver, or none.
SystemFile xf_system_file(hid_t file);

}  // namespace quillet
