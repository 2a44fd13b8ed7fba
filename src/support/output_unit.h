// One file being written. It grows as a part file and gets its final name when it is complete.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "support/part_file.h"

namespace quillet {

class OutputUnit {
 public:
  // Bytes gathered before the system is called: smaller pieces cost several times as much.
  static constexpr std::size_t buffer_size = std::size_t{1} << 20;

  enum class Replace { when_complete, directly };

  OutputUnit() = default;
  // Creates the file. When it cannot be created, asks the user to try again; ends the run when
  // there is nobody to ask. `directly` writes under the final name from the start.
  explicit OutputUnit(const std::string& file_name, Replace replace = Replace::when_complete);
  OutputUnit(const OutputUnit&) = delete;
  OutputUnit& operator=(const OutputUnit&) = delete;
  // Abandons what was not completed: it stays under its temporary name.
  ~OutputUnit();

  const std::string& name() const { return file_name; }

  // Tells the system how long the file will be, which makes writing cheaper. A hint: a file that
  // ends shorter is cut, a longer one grows.
  void expect_size(std::int64_t bytes);

  // From here on a helper thread may write, one at a time: what the system refuses is kept until
  // the file is to be completed.
  void tell_failures_when_complete() { keeps_failure = true; }

  // All writing ends the run when the system refuses (a full disk).
  void write(const void* data, std::size_t size);
  void write(std::string_view text) { write(text.data(), text.size()); }

  // Writes over the first bytes of the file, which have been written. The last that is written.
  void write_over_start(std::string_view bytes);

  // Puts items `first` to before `end` into the memory at `at`, each as many bytes long as all.
  // Touches nothing else and throws nothing.
  using FillItems = std::function<void(std::int64_t first, std::int64_t end, char* at)>;

  // Writes `count` items of `size` bytes (at most piece_size) in their order. Where there are
  // enough to be worth it they are filled in by pieces, also by helpers that have nothing else to
  // do, in the buffer: no more memory is used.
  void write_items(std::int64_t count, int size, const FillItems& fill);
  static constexpr std::size_t piece_size = buffer_size / 8;

  // Room for `size` bytes (at most buffer_size) in the buffer, to be filled and then kept.
  char* room(std::size_t size);
  void keep(std::size_t size) { buffered += size; }

  // Whether the system has refused what was written so far, where that is told when complete.
  bool has_failed() const { return !failure.empty(); }

  // What complete() does with a file that is written directly, but for telling a failure: a helper
  // may do it. Nothing is written after it.
  void end_writing();

  // Writes what is left, closes, and gives the file its final name.
  void complete();

 private:
  std::string create();  // the reason when it cannot be, or empty
  void write_out(const char* data, std::size_t size);
  void flush();
  void take_failure(const std::string& reason);
  void write_shared_items(std::int64_t count, int size, const FillItems& fill);

  struct Freer {
    void operator()(char* memory) const;
  };
  using Buffer = std::unique_ptr<char, Freer>;
  struct Spares;

  static Spares& spare_buffers();
  static Buffer take_buffer();
  static void give_back(Buffer buffer);

  std::string file_name;
  bool is_direct = false;
  PartFile part;
  SystemFile file = no_file;  // of the part file or, written directly, of its own
  Buffer buffer;
  std::size_t buffered = 0;
  std::int64_t written = 0;
  std::int64_t reserved = 0;
  bool keeps_failure = false;
  std::string failure;  // the system's reason; nothing is written after it
};

}  // namespace quillet
