#include "operations/time_list.h"

#include <fmt/format.h>

#include "support/console.h"
#include "support/output_unit.h"

namespace quillet {

void LIST_OUTPUT_TIMES(ResultSource& source, const std::string& text_file) {
  SAY("Output Text File: " + text_file);
  OutputUnit output(text_file);
  SAY_APART("Times in file: " + source.name());
  while (!source.at_end()) {
    const std::string line = fmt::format("{:15.3f}", source.next_time());
    SAY(line);
    output.write(line + '\n');
    source.pass_next();
  }
  source.close();
  SAY("Closing output file.");
  output.complete();
  SAY("Done");
}

}  // namespace quillet
