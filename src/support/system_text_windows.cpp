#include "support/system_text_windows.h"

#include <windows.h>

namespace quillet {

std::wstring WIDE_TEXT(std::string_view text) {
  const int size = static_cast<int>(text.size());
  const int length = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
  std::wstring result(static_cast<std::size_t>(length), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), length);
  return result;
}

}  // namespace quillet
