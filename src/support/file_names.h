// Parts of file names. Both "/" and "\" separate folders, on every platform.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillet {

// For C:\run\res_h.dat:
std::string FILEEXT(std::string_view name);         // ".dat": lower case, with its dot; or empty
std::string FILENAME(std::string_view name);        // "res_h": without folder and extension
std::string FILENAMEPATH(std::string_view name);    // "C:\run\res_h": without extension
std::string FILEFOLDERPATH(std::string_view name);  // "C:\run\": with the closing separator; or ""
std::string FILE_SUFFIX(std::string_view name);     // "_h": FILENAME from its last "_"; or empty
// "C:\run\res": without extension and cut just before the last "_" of the file's own name; a name
// without "_" is only freed of its extension.
std::string FILENAMEPATHNO_(std::string_view name);

// A name and the "(...)" that close its own part, as the program appends them to what it writes:
// C:\run\res_h(range)(maxmax).dat is C:\run\res_h.dat with "(range)" and "(maxmax)". Blanks before
// a bracket belong to it. A name that would be empty without its brackets keeps them.
struct BracketedName {
  std::string name;
  std::vector<std::string> brackets;
};
BracketedName SPLIT_BRACKETS(std::string_view name);

// The name without its closing "(...)".
std::string WITHOUT_BRACKETS(std::string_view name);

// True for names that are not to be joined to a folder: "/x", "\x", "C:\x".
bool IS_ABSOLUTE_NAME(std::string_view name);

// The name under which the system knows the file: "\" is "/" where "\" is no separator.
std::string SYSTEM_NAME(std::string_view name);

// True when both names lead to one file that exists, whatever their spelling.
bool SAME_FILE(const std::string& a, const std::string& b);

// True when both names stand for one place in the file system, whether anything is there or not.
bool SAME_PLACE(const std::string& a, const std::string& b);

// True when the name leads to something that exists and is not a folder.
bool FILE_EXISTS(const std::string& name);

}  // namespace quillet
