#include "model_options.h"

#include <fmt/format.h>

#include <charconv>
#include <stdexcept>
#include <string_view>

namespace quillet::example {
namespace {

class ArgumentList {
 public:
  ArgumentList(int count, const char* const* arguments) : count_(count), arguments_(arguments) {}

  bool empty() const { return next_ >= count_; }
  std::string_view take() { return arguments_[next_++]; }
  std::string_view take_value(std::string_view option) {
    if (empty()) throw std::runtime_error(fmt::format("{} needs a value", option));
    return take();
  }

 private:
  int count_;
  const char* const* arguments_;
  int next_ = 1;
};

int whole_number(std::string_view option, std::string_view text, int lowest, int highest) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value < lowest || value > highest) {
    throw std::runtime_error(fmt::format("{} needs a whole number from {} to {}, found \"{}\"",
                                         option, lowest, highest, text));
  }
  return value;
}

MeshForm mesh_form(std::string_view text) {
  if (text == "full") return MeshForm::full;
  if (text == "pre2005") return MeshForm::pre2005;
  if (text == "fv") return MeshForm::fv;
  throw std::runtime_error(fmt::format("--header needs full, pre2005 or fv, found \"{}\"", text));
}

// False when the argument is no option.
bool take_option(std::string_view argument, ArgumentList& rest, MODEL_OPTIONS_TYPE& options) {
  if (argument == "--nodes") {
    options.nodes = whole_number(argument, rest.take_value(argument), 1000, 20'000'000);
  } else if (argument == "--times") {
    options.times = whole_number(argument, rest.take_value(argument), 1, 10'000);
  } else if (argument == "--scenarios") {
    options.scenarios = whole_number(argument, rest.take_value(argument), 1, 2);
  } else if (argument == "--header") {
    options.form = mesh_form(rest.take_value(argument));
  } else if (argument == "--quad9") {
    options.quad9 = true;
  } else if (argument == "--no-stored-maxima") {
    options.stored_maxima = false;
  } else if (argument == "--no-xmdf") {
    options.xmdf = false;
  } else if (argument == "--compress") {
    options.compression = whole_number(argument, rest.take_value(argument), 0, 9);
  } else if (argument == "--times-per-chunk") {
    options.times_per_chunk = whole_number(argument, rest.take_value(argument), 1, 10'000);
  } else if (argument == "--help") {
    options.help = true;
  } else if (argument.starts_with("-")) {
    throw std::runtime_error(fmt::format("unknown option \"{}\", --help lists them", argument));
  } else {
    return false;
  }
  return true;
}

}  // namespace

MODEL_OPTIONS_TYPE parse_options(int count, const char* const* arguments) {
  MODEL_OPTIONS_TYPE options;
  ArgumentList rest(count, arguments);
  bool folder_found = false;
  while (!rest.empty()) {
    const std::string_view argument = rest.take();
    if (take_option(argument, rest, options)) continue;
    if (folder_found || argument.empty()) {
      throw std::runtime_error(fmt::format("one folder expected, found also \"{}\"", argument));
    }
    options.folder = argument;
    folder_found = true;
  }
  if (options.quad9 && options.form != MeshForm::full) {
    throw std::runtime_error("--quad9 needs --header full, other forms have no 9-node elements");
  }
  return options;
}

const char* usage_text() {
  return R"(Usage: quillet_example_model [options] [FOLDER]

Writes an example flood model into FOLDER (created when missing, default "."): meshes run1.2dm and
run2.2dm, results run1_h.dat, run1_d.dat, run1_V.dat and the same of run2, all of them once more in
run1.xmdf and run2.xmdf, lists run1.sup, run2.sup and levels.sup. Run 2 has the larger flood and a
raised levee.

  --nodes N            about N mesh nodes, 1000 to 20000000 (default 5000)
  --times T            T output times, every half hour from 0 (default 24)
  --no-stored-maxima   leave out the last output time 99999, the maxima over all others, and
                       the maxima, minima and special times of the .xmdf files
  --header FORM        form of the .2dm files: full, pre2005 or fv (default full);
                       fv writes results at cell centres, as many nodes as cells
  --quad9              9-node instead of 4-node quadrilaterals
  --no-xmdf            no .xmdf files
  --compress L         deflate level of the .xmdf files, 0 to 9 (default 0, none)
  --times-per-chunk N  output times that an .xmdf file stores together (default 1)
  --scenarios S        1 writes only run1, 2 both (default 2)
  --help               this text
)";
}

}  // namespace quillet::example
