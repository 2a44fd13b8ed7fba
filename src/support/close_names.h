// What a user may have meant by the name of a file that is not there.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillet {

// The least number of characters to put in, take out, change or swap with their neighbour that make
// one name of the other; letters that differ in case alone are equal. More than `most`: most + 1.
std::size_t EDIT_DISTANCE(std::string_view a, std::string_view b, std::size_t most);

// 'Did you mean "run1_d.dat"?': the files in the folder of `file_name` whose names differ from it
// by the fewest characters, at most two, three names at most, each with the folder as it was
// written. Empty when the file is there, or nothing like it.
std::string CLOSE_NAMES_QUESTION(const std::string& file_name);

}  // namespace quillet
