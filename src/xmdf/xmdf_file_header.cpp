#include "xmdf/xmdf_file_header.h"

#include <tuple>

#include "support/console.h"
#include "support/text.h"

namespace quillet {

void FAIL_XMDF(std::string_view text, const std::string& file_name, const std::string& path,
               const XfStatus& status, const std::string& suggestion) {
  if (status.kind == XfStatus::Kind::no_memory) FAIL_ALLOCATION();
  std::string message = std::string(text) + file_name;
  if (!path.empty()) message += ", dataset " + QUOTED(path);
  if (!status.reason.empty()) message += ": " + status.reason;
  SAY_APART(message);
  if (!suggestion.empty()) SAY_HELP(suggestion);
  EXITS();
}

void CLOSE_XMDF_INPUT(XmdfFileHeader& header) {
  SAY("Closing .xmdf file: " + header.file_name);
  std::ignore = XF_CLOSE_FILE(header.file);
}

}  // namespace quillet
