#include "xmdf/xmdf_file_header.h"

#include <tuple>

#include "support/console.h"
#include "support/text.h"

namespace quillet {

void FAIL_XMDF(std::string_view text, const std::string& file_name, const std::string& path,
               const XfStatus& status, const std::string& suggestion) {
  if (status.kind == XfStatus::Kind::no_memory) FAIL_ALLOCATION();
  std::string detail = QUOTED(file_name);
  if (!path.empty()) detail += ", dataset " + QUOTED(path);
  if (!status.reason.empty()) detail += ": " + status.reason;
  SAY_APART(std::string(text) + (text.ends_with(' ') ? file_name : ""));
  SAY_HELP(detail);
  if (!suggestion.empty()) SAY_HELP(suggestion);
  EXITS();
}

void FAIL_NOTHING_SELECTED(const XmdfFileHeader& header) {
  FAIL_RUN("ERROR - Unable trying to open group ID = 0 [xmdf_get_data_time]",
           QUOTED(header.file_name) + " holds no such output times of what was asked for");
}

void CLOSE_XMDF_INPUT(XmdfFileHeader& header) {
  SAY("Closing .xmdf file: " + header.file_name);
  std::ignore = XF_CLOSE_FILE(header.file);
}

}  // namespace quillet
