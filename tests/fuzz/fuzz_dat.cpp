// The header of a .dat file, the walk over its output times, their values: two walks give the same.
#include <cstdlib>

#include "dat/dat_reader.h"
#include "fuzz/fuzz_input.h"
#include "support/run_end.h"

namespace quillet {
namespace {

// Every output time, read into one record; returns a sum over what was read, which touches it all.
double walk(DatReader& reader) {
  reader.read_header();
  reader.check_counts();
  if (reader.at_end()) return 0;
  const DatHeader& header = reader.header();
  RES_TYPE record;
  SIZE_RECORD(record, header.node_count, header.cell_count, header.is_vector);
  double sum = 0;
  while (!reader.at_end()) {
    reader.load(reader.advance(), record);
    for (const float value : record.nd.x) sum += value > 0 ? 1 : 0;
    for (const std::int8_t status : record.cell.status) sum += status;
  }
  return sum;
}

double walk_file(const std::string& name) try {
  DatReader reader(name);
  return walk(reader);
} catch (const RunEnd&) {
  return -1;
}

}  // namespace
}  // namespace quillet

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static quillet::fuzz::MemoryFile file;
  file.set(data, size);
  const double sum = quillet::walk_file(file.name());
  if (quillet::walk_file(file.name()) != sum) std::abort();
  return 0;
}
