#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace quillet::example {

// A file that is created or replaced. Every failure, a full disk at the close included, throws
// std::runtime_error with the file's name.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(const void* bytes, std::size_t count);
  void close();

 private:
  [[noreturn]] void fail(const char* action) const;

  std::string path_;
  std::FILE* file_;
};

}  // namespace quillet::example
