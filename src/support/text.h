// Comparison and clean-up of short texts: options, type codes, file names. Case is ASCII case;
// nothing here depends on the locale.
#pragma once

#include <string>
#include <string_view>

namespace quillet {

std::string UPPERCASE(std::string_view text);
std::string LOWERCASE(std::string_view text);

// The text without its trailing blanks.
std::string_view TRIMF(std::string_view text);

// The text without leading and trailing blanks and tabs.
std::string_view TRIM_BOTH(std::string_view text);

// True for an empty text and for one of blanks only. A NUL character is not a blank.
bool BLANK(std::string_view text);

// Equality without regard to case, after quote characters, tabs and surrounding blanks are removed
// from both texts.
bool ASAME(std::string_view a, std::string_view b);

// True when the key stands anywhere in the examined text, without regard to case.
bool FLAGEXISTS(std::string_view examined, std::string_view key);

// A name as it stands after a keyword, without double quotes, surrounding blanks and tabs, and one
// surrounding pair of single quotes. An apostrophe inside a name is part of it.
std::string REMOVEQUOTES(std::string_view text);

// The text as the console and reports may show it, with "?" for every control character (bytes 0 to
// 31, 127, and U+0080 to U+009F in UTF-8): what a file holds must not reach the terminal as
// commands or forge a line.
std::string SHOWN(std::string_view text);

// The text in double quotation marks, as messages show names.
std::string QUOTED(std::string_view text);

}  // namespace quillet
