// What HDF5 knows about its last failure, in words for the console.
#pragma once

#include <hdf5.h>

#include <new>
#include <stdexcept>
#include <string>

#include "support/file_at_risk.h"
#include "xf/xf_status.h"

namespace quillet {

struct XfLastError {
  std::string system_reason;  // the system's words ("No space left on device"), or empty
  std::string truncation;     // "expected 4096 bytes, found 1312" for a file that was cut, or empty
  std::string advice;         // how to open a file that its writer left open, or empty
};

// Looks through the errors of the HDF5 call that has just failed; every later call, closing a
// handle included, clears them.
XfLastError xf_last_error();

// To be called before anything else of HDF5. It prints its errors unless told otherwise, and at the
// end of the program closes again what could not be closed when the disk was full, which crashes.
void xf_prepare_hdf5();

// The system's words for the call that has just failed, else the given ones.
XfStatus xf_hdf5_failure(const std::string& otherwise);

// "expected 1000 values, found 900", where both are not the same.
XfStatus xf_check_count(const char* what, hsize_t expected, hsize_t found);

// Runs an operation that sizes arrays. The reason for a failure is short enough to take no memory.
template <typename Operation>
XfStatus xf_guard_memory(Operation operation) {
  constexpr const char* no_memory = "out of memory";
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    return {XfStatus::Kind::no_memory, no_memory};
  } catch (const std::length_error&) {
    return {XfStatus::Kind::no_memory, no_memory};
  }
}

// Of a file whose damage crashes HDF5.
constexpr const char* xf_fatal_damage =
    "expected intact HDF5 headers, found damage that HDF5 cannot cope with";

// The same for what reads an open file.
template <typename Operation>
XfStatus xf_guard_reading(const std::string& file_name, Operation operation) {
  const FileAtRisk reading(file_name, xf_fatal_damage);
  return xf_guard_memory(operation);
}

}  // namespace quillet
