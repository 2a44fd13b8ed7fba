// The header of a .dat file, the walk over its output times, their values: two walks give the same.
#include <cstdlib>
#include <functional>
#include <string_view>

#include "dat/dat_reader.h"
#include "fuzz/fuzz_input.h"
#include "support/run_end.h"

namespace quillet {
namespace {

// Statuses that are not in the file are not worth the time that they take.
constexpr std::int32_t most_cells = 1 << 14;

template <typename Array>
std::size_t hash_of(const Array& values) {
  const auto* const bytes = reinterpret_cast<const char*>(values.data());
  return std::hash<std::string_view>()({bytes, values.size() * sizeof values[0]});
}

// Every output time, read into one record; returns a hash of all that was read. The loops over
// values are the library's, which are not traced.
std::size_t walk(DatReader& reader) {
  reader.read_header();
  reader.check_counts();
  if (reader.at_end()) return 0;
  const DatHeader& header = reader.header();
  if (header.cell_count > most_cells) return 0;
  RES_TYPE record;
  SIZE_RECORD(record, header.node_count, header.cell_count, header.is_vector);
  std::size_t hash = 0;
  while (!reader.at_end()) {
    reader.load(reader.advance(), record);
    for (const std::size_t part :
         {hash_of(record.nd.x), hash_of(record.nd.y), hash_of(record.cell.status)}) {
      hash = 31 * hash + part;
    }
  }
  return hash;
}

std::size_t walk_file(const std::string& name) try {
  DatReader reader(name);
  return walk(reader);
} catch (const RunEnd&) {
  return 1;
}

}  // namespace
}  // namespace quillet

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static quillet::fuzz::MemoryFile file;
  file.set(data, size);
  const std::size_t hash = quillet::walk_file(file.name());
  if (quillet::walk_file(file.name()) != hash) std::abort();
  return 0;
}
