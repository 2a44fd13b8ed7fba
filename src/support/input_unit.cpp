#include "support/input_unit.h"

#include <utility>

#include "support/close_names.h"
#include "support/console.h"
#include "support/system_files.h"

namespace quillet {

InputUnit::InputUnit(const std::string& name) : file_name(name) {
  std::string reason;
  while ((file = OPEN_REGULAR_FILE(file_name, file_size, reason)) == no_file) {
    ASK_TO_TRY_AGAIN(file_name, reason, CLOSE_NAMES_QUESTION(file_name));
  }
}

InputUnit::InputUnit(InputUnit&& other) noexcept
    : file_name(std::move(other.file_name)),
      file(std::exchange(other.file, no_file)),
      file_size(other.file_size) {}

InputUnit& InputUnit::operator=(InputUnit&& other) noexcept {
  std::swap(file_name, other.file_name);
  std::swap(file, other.file);
  std::swap(file_size, other.file_size);
  return *this;
}

InputUnit::~InputUnit() {
  close();
}

std::int64_t InputUnit::read_at(std::int64_t position, void* destination,
                                std::int64_t count) const {
  const std::int64_t done = try_to_read_at(position, destination, count);
  if (done < 0) FAIL_READING(file_name, SYSTEM_REASON());
  return done;
}

std::int64_t InputUnit::try_to_read_at(std::int64_t position, void* destination,
                                       std::int64_t count) const {
  std::int64_t done = 0;
  while (done < count) {
    const std::int64_t got =
        READ_SOME_AT(file, position + done, static_cast<char*>(destination) + done, count - done);
    if (got < 0) return -1;
    if (got == 0) break;
    done += got;
  }
  return done;
}

void InputUnit::close() {
  if (file != no_file) CLOSE_SYSTEM_FILE(file);
  file = no_file;
}

}  // namespace quillet
