#include "xf/xf_stored_file.h"

#include <cstddef>

#include "xf/xf_handle.h"

namespace quillet {
namespace {

void close_handle(const SystemFile* handle) {
  CLOSE_SYSTEM_FILE(*handle);
  delete handle;
}

bool has_plain_addresses(hid_t file) {
  const XfPropertiesHandle creation(H5Fget_create_plist(file));
  hsize_t user_block = 0;
  std::size_t addresses = 0;
  std::size_t lengths = 0;
  return H5Pget_userblock(creation.get(), &user_block) >= 0 && user_block == 0 &&
         H5Pget_sizes(creation.get(), &addresses, &lengths) >= 0 &&
         addresses == sizeof(std::uint64_t) && lengths == sizeof(std::uint64_t);
}

}  // namespace

SystemFile xf_system_file(hid_t file) {
  void* descriptor = nullptr;
  return H5Fget_vfd_handle(file, H5P_DEFAULT, &descriptor) >= 0
             ? *static_cast<SystemFile*>(descriptor)
             : no_file;
}

XfStoredFile::XfStoredFile(hid_t file) {
  hsize_t size = 0;
  if (H5Fget_filesize(file, &size) >= 0) byte_count = size;
  const SystemFile opened = has_plain_addresses(file) ? xf_system_file(file) : no_file;
  const SystemFile second = opened == no_file ? no_file : SECOND_SYSTEM_FILE(opened);
  if (second != no_file) handle = {new SystemFile(second), close_handle};
}

bool XfStoredFile::read(std::uint64_t position, void* destination, std::uint64_t count) const {
  auto* const bytes = static_cast<std::byte*>(destination);
  for (std::uint64_t done = 0; done < count;) {
    const std::int64_t got = READ_SOME_AT(*handle, static_cast<std::int64_t>(position + done),
                                          bytes + done, static_cast<std::int64_t>(count - done));
    if (got <= 0) return false;
    done += static_cast<std::uint64_t>(got);
  }
  return true;
}

}  // namespace quillet
