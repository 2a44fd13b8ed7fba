// What the floor programs for .dat files share: arrays, large reads, large writes. No checks: a
// file that is not as this project writes it gives nonsense.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace quillet_floor {

constexpr std::size_t huge_page = std::size_t{2} << 20;

// Nodes in one read: their values stay in the processor's second cache while they are worked on.
constexpr std::int64_t nodes_in_piece = 64 * 1024;

// Zeroed memory that lives as long as the program, in huge pages where it is worth one.
template <typename Item>
Item* make_array(std::int64_t count) {
  const std::size_t size = static_cast<std::size_t>(count) * sizeof(Item);
  if (size < huge_page / 2) {
    void* const memory = std::calloc(size + 1, 1);
    if (memory == nullptr) std::abort();
    return static_cast<Item*>(memory);
  }
  const std::size_t whole_pages = (size + huge_page - 1) / huge_page * huge_page;
  void* const memory = ::mmap(nullptr, whole_pages + huge_page, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) std::abort();
  const auto aligned = (reinterpret_cast<std::uintptr_t>(memory) + huge_page - 1) & -huge_page;
  ::madvise(reinterpret_cast<void*>(aligned), whole_pages, MADV_HUGEPAGE);
  return reinterpret_cast<Item*>(aligned);
}

// A .dat file whose header has the usual cards and whose output times all state their statuses.
struct DatFile {
  static constexpr std::int64_t header_size = 92;
  static constexpr std::int64_t head_size = 9;  // card, status flag, time

  explicit DatFile(const char* name) : file(::open(name, O_RDONLY)) {
    if (file < 0) std::abort();
    read(0, header, header_size);
    std::memcpy(&nodes, header + 36, sizeof nodes);
    std::memcpy(&cells, header + 44, sizeof cells);
    components = header[28] == static_cast<char>(140) ? 2 : 1;
    size = ::lseek(file, 0, SEEK_END);
    times = (size - header_size - 4) / step_size();
  }

  std::int64_t value_size() const { return components * std::int64_t{sizeof(float)}; }
  std::int64_t step_size() const { return head_size + cells + nodes * value_size(); }
  std::int64_t step_at(std::int64_t step) const { return header_size + step * step_size(); }

  float time(std::int64_t step) const {
    float hours = 0;
    read(step_at(step) + 5, &hours, sizeof hours);
    return hours;
  }
  void read_statuses(std::int64_t step, std::int8_t* status) const {
    read(step_at(step) + head_size, status, cells);
  }
  // `count` values (pairs for vectors) from node `first` (from 0).
  void read_values(std::int64_t step, std::int64_t first, std::int64_t count, float* values) const {
    read(step_at(step) + head_size + cells + first * value_size(), values, count * value_size());
  }
  void read(std::int64_t from, void* to, std::int64_t count) const {
    if (::pread(file, to, static_cast<std::size_t>(count), from) != count) std::abort();
  }

  int file;
  char header[header_size];
  std::int32_t nodes = 0, cells = 0;
  std::int64_t components = 1, size = 0, times = 0;
};

// Reserves the whole size first and gathers small items.
class OutFile {
 public:
  OutFile(const char* name, std::int64_t size)
      : file(::open(name, O_WRONLY | O_CREAT | O_TRUNC, 0666)),
        buffer(static_cast<char*>(std::aligned_alloc(4096, buffer_size))) {
    if (file < 0 || buffer == nullptr) std::abort();
    ::fallocate(file, 0, 0, size);
  }

  void write(const void* data, std::int64_t count) {
    if (count >= buffer_size) {
      flush();
      write_out(data, count);
      return;
    }
    if (buffered + count > buffer_size) flush();
    std::memcpy(buffer + buffered, data, static_cast<std::size_t>(count));
    buffered += count;
  }
  template <typename Item>
  void put(Item item) {
    write(&item, sizeof item);
  }
  void close() {
    flush();
    if (::close(file) != 0) std::abort();
  }

 private:
  static constexpr std::int64_t buffer_size = std::int64_t{64} << 10;

  void flush() {
    write_out(buffer, buffered);
    buffered = 0;
  }
  void write_out(const void* data, std::int64_t count) const {
    if (::write(file, data, static_cast<std::size_t>(count)) != count) std::abort();
  }

  int file;
  char* buffer;
  std::int64_t buffered = 0;
};

// A .dat output with the shape of an input: `steps` output times, the first `vector_steps` of them
// of vectors.
struct DatOutput {
  DatOutput(const char* name, const char* dataset, const DatFile& like, std::int64_t steps,
            std::int64_t vector_steps)
      : cells(like.cells),
        out(name, DatFile::header_size + 4 + steps * (DatFile::head_size + cells + like.nodes * 4) +
                      vector_steps * like.nodes * 4) {
    char header[DatFile::header_size];
    std::memcpy(header, like.header, sizeof header);
    header[28] = static_cast<char>(vector_steps > 0 ? 140 : 130);
    std::memset(header + 52, ' ', 40);
    std::memcpy(header + 52, dataset, std::min(std::strlen(dataset), std::size_t{40}));
    out.write(header, sizeof header);
  }

  void begin_step(float time, const std::int8_t* status) {
    out.put(std::int32_t{200});
    out.put(std::int8_t{1});
    out.put(time);
    out.write(status, cells);
  }
  void close() {
    out.put(std::int32_t{210});
    out.close();
  }

  std::int64_t cells;
  OutFile out;
};

}  // namespace quillet_floor
