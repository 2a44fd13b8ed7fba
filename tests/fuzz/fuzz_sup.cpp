// A .sup file.
#include "fuzz/fuzz_input.h"
#include "mesh/read_sup.h"
#include "support/run_end.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static quillet::fuzz::MemoryFile file;
  file.set(data, size);
  try {
    quillet::SUP_FILE_TYPE sup;
    sup.file = file.name();
    quillet::READ_SUP(sup);
  } catch (const quillet::RunEnd&) {
  }
  return 0;
}
