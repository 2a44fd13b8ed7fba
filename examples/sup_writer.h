#pragma once

#include <string>
#include <vector>

namespace quillet::example {

// Writes a .sup file: the mesh and the result files of one model, as names beside it.
void write_sup(const std::string& path, const std::string& mesh,
               const std::vector<std::string>& results);

}  // namespace quillet::example
