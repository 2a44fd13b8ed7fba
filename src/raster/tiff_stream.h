// The TIFF library's view of an output: it takes a file apart that it can seek in, while the output
// unit is written from its start to its end and may end the run, which must not happen inside the
// library.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <string>

#include "support/output_unit.h"

namespace quillet {

// What the library writes is kept here until pass_on().
class TiffStream {
 public:
  // `big` makes a BigTIFF. Ends the run when the library has no memory.
  TiffStream(OutputUnit& output, bool big);
  TiffStream(const TiffStream&) = delete;
  TiffStream& operator=(const TiffStream&) = delete;

  TIFF* tiff() const { return handle.get(); }

  // Bytes that the library has written.
  std::uint64_t end() const { return passed + pending.size(); }

  // Hands what was written to the output.
  void pass_on();

  // Ends the run, as the library refused something.
  [[noreturn]] void fail() const;

  // Lets the library write its directory, hands that over too, and sets the start of the file to
  // point to it.
  void finish();

 private:
  static tmsize_t write(thandle_t stream, void* data, tmsize_t size);
  static toff_t seek(thandle_t stream, toff_t offset, int whence);
  void store(const char* data, std::size_t size);

  struct Closer {
    void operator()(TIFF* target) const { TIFFCleanup(target); }
  };

  OutputUnit& unit;
  std::string head;     // the first bytes, which change once the directory's place is known
  std::string pending;  // what follows `passed`
  std::uint64_t passed = 0;
  std::uint64_t position = 0;
  bool out_of_memory = false;
  std::unique_ptr<TIFF, Closer> handle;
};

}  // namespace quillet
