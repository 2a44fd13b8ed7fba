#include "raster/tiff_stream.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include "support/console.h"

namespace quillet {
namespace {

TiffStream* stream_of(thandle_t handle) {
  return static_cast<TiffStream*>(handle);
}

tmsize_t read_nothing(thandle_t, void*, tmsize_t) {
  return 0;
}

int close_nothing(thandle_t) {
  return 0;
}

}  // namespace

TiffStream::TiffStream(OutputUnit& output, bool big) : unit(output), head(big ? 16 : 8, '\0') {
  // What the library has to say of a failure is not for the user's eyes: see fail().
  TIFFSetErrorHandler(nullptr);
  TIFFSetWarningHandler(nullptr);
  const auto size = [](thandle_t stream) { return toff_t{stream_of(stream)->end()}; };
  handle.reset(TIFFClientOpen(unit.name().c_str(), big ? "w8" : "w4", this, read_nothing, write,
                              seek, close_nothing, size, nullptr, nullptr));
  if (!handle) FAIL_ALLOCATION();
}

// The library is given no way to end the run: what is thrown would pass through it.
tmsize_t TiffStream::write(thandle_t stream, void* data, tmsize_t size) try {
  stream_of(stream)->store(static_cast<const char*>(data), static_cast<std::size_t>(size));
  return size;
} catch (const std::bad_alloc&) {
  stream_of(stream)->out_of_memory = true;
  return -1;
}

toff_t TiffStream::seek(thandle_t handle, toff_t offset, int whence) {
  TiffStream& stream = *stream_of(handle);
  const toff_t from = whence == SEEK_END ? stream.end() : whence == SEEK_CUR ? stream.position : 0;
  return stream.position = from + offset;
}

// Of what was passed on, only the first bytes are written again: they tell where the directory is.
void TiffStream::store(const char* data, std::size_t size) {
  if (position < head.size()) {
    std::memcpy(&head[position], data, std::min(size, head.size() - position));
  }
  if (position >= passed) {
    pending.resize(std::max(pending.size(), position + size - passed));
    std::memcpy(&pending[position - passed], data, size);
  }
  position += size;
}

void TiffStream::pass_on() {
  unit.write(pending);
  passed += pending.size();
  pending.clear();
}

void TiffStream::fail() const {
  if (out_of_memory) FAIL_ALLOCATION();
  FAIL_WRITING(unit.name(), "the raster is too large for its format");
}

void TiffStream::finish() {
  if (TIFFWriteDirectory(tiff()) == 0) fail();
  pass_on();
  unit.write_over_start(head);
}

}  // namespace quillet
