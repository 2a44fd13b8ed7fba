// Which file a library is reading that trusts what stands in it: should the process crash there,
// the last line can name the file.
#pragma once

#include <string>

namespace quillet {

// While an object lives, calls of the library read this file; objects nest. One thread at a time
// calls such a library.
class FileAtRisk {
 public:
  // `damage`: what a crash tells about the file, "expected ..., found ...". Both strings outlive
  // the object. An empty name stands for a file of our own, which is not at risk.
  FileAtRisk(const std::string& file_name, const char* damage);
  FileAtRisk(const FileAtRisk&) = delete;
  FileAtRisk& operator=(const FileAtRisk&) = delete;
  ~FileAtRisk();

  const std::string& name;
  const char* const damage;

 private:
  const FileAtRisk* const outer;
};

// Null when no such file is being read.
const FileAtRisk* FILE_AT_RISK();

}  // namespace quillet
