#include "sup_writer.h"

#include <fmt/format.h>

#include "output_file.h"

namespace quillet::example {

void write_sup(const std::string& path, const std::string& mesh,
               const std::vector<std::string>& results) {
  std::string text = fmt::format("SUPER\nMESH2D \"{}\"\n", mesh);
  for (const std::string& result : results) text += fmt::format("DATA \"{}\"\n", result);
  OutputFile file(path);
  file.write(text.data(), text.size());
  file.close();
}

}  // namespace quillet::example
