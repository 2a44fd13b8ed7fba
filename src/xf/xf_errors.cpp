#include "xf/xf_errors.h"

#include <string_view>

namespace quillet {
namespace {

// The text between `before` and `after`, or empty.
std::string_view text_between(std::string_view text, std::string_view before,
                              std::string_view after) {
  const std::size_t found = text.find(before);
  if (found == std::string_view::npos) return {};
  const std::size_t begin = found + before.size();
  const std::size_t end = text.find(after, begin);
  return text.substr(begin, end == std::string_view::npos ? end : end - begin);
}

void note_error(const H5E_error2_t& entry, XfLastError& error) {
  const std::string_view text = entry.desc == nullptr ? "" : entry.desc;
  if (text.find("consistency flags") != std::string_view::npos) error.advice = text;
  if (entry.min_num == H5E_TRUNCATED) {
    const std::string_view found = text_between(text, "eof = ", ",");
    const std::string_view expected = text_between(text, "stored_eof = ", ",");
    error.truncation.append("expected ").append(expected);
    error.truncation.append(" bytes, found ").append(found);
  }
  if (error.system_reason.empty()) {
    error.system_reason = text_between(text, "error message = '", "'");
  }
}

herr_t visit_error(unsigned /*depth*/, const H5E_error2_t* entry, void* error) {
  try {
    note_error(*entry, *static_cast<XfLastError*>(error));
  } catch (const std::bad_alloc&) {
    return -1;
  }
  return 0;
}

}  // namespace

XfLastError xf_last_error() {
  XfLastError error;
  H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, visit_error, &error);
  return error;
}

void xf_prepare_hdf5() {
  H5dont_atexit();
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  H5PLset_loading_state(0);  // a file does not choose code that is loaded
}

XfStatus xf_hdf5_failure(const std::string& otherwise) {
  const XfLastError error = xf_last_error();
  return XF_FAILURE(error.system_reason.empty() ? otherwise : error.system_reason);
}

XfStatus xf_check_count(const char* what, hsize_t expected, hsize_t found) {
  if (expected == found) return {};
  return XF_FAILURE("expected " + std::to_string(expected) + " " + what + ", found " +
                    std::to_string(found));
}

}  // namespace quillet
