#include "xf/xf_stored_file.h"

#include <cstddef>

namespace quillet {
namespace {

void close_handle(const SystemFile* handle) {
  CLOSE_SYSTEM_FILE(*handle);
  delete handle;
}

}  // namespace

XfStoredFile::XfStoredFile(SystemFile opened, std::uint64_t size) : byte_count(size) {
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
