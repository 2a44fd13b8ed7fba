#include "output_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace quillet::example {

OutputFile::OutputFile(const std::string& path)
    : path_(path), file_(std::fopen(path.c_str(), "wb")) {
  if (file_ == nullptr) fail("create");
}

OutputFile::~OutputFile() {
  if (file_ != nullptr) std::fclose(file_);
}

void OutputFile::write(const void* bytes, std::size_t count) {
  if (std::fwrite(bytes, 1, count, file_) != count) fail("write");
}

void OutputFile::close() {
  std::FILE* file = file_;
  file_ = nullptr;
  if (std::fclose(file) != 0) fail("write");
}

void OutputFile::fail(const char* action) const {
  throw std::runtime_error(
      fmt::format("cannot {} \"{}\": {}", action, path_, std::strerror(errno)));
}

}  // namespace quillet::example
