// Text as Windows takes it. Only its own implementation files include this.
#pragma once

#include <string>
#include <string_view>

namespace quillet {

// UTF-16 of a text in UTF-8.
std::wstring WIDE_TEXT(std::string_view text);

}  // namespace quillet
