// Reads the files named, damaged ones among them, and goes on after each: a failure is an exception
// with its line, and nothing is printed or waited for.
#include <dat/dat_reader.h>
#include <fmt/format.h>
#include <mesh/load_mesh.h>
#include <support/console.h>
#include <xf/xf_file.h>
#include <xf/xf_trial.h>

#include <optional>
#include <string>

namespace {

int count_output_times(const std::string& name) {
  quillet::DatReader reader(name);
  reader.read_header();
  int count = 0;
  for (; !reader.at_end(); ++count) reader.advance();
  return count;
}

std::string describe_xmdf(const std::string& name) {
  quillet::XfFile file;
  quillet::XfStatus status = quillet::XF_TRY_FILE(name);
  if (status.ok()) status = quillet::XF_OPEN_FILE(name, file);
  return status.ok() ? "opened" : status.reason;
}

std::string describe_mesh(const std::string& name) {
  quillet::MESH_TYPE mesh;
  quillet::LOAD_MESH(name, std::nullopt, std::nullopt, mesh);
  return fmt::format("{} nodes", mesh.node_count);
}

std::string describe(const std::string& name) try {
  if (name.ends_with(".xmdf")) return describe_xmdf(name);
  if (name.ends_with(".2dm")) return describe_mesh(name);
  return fmt::format("{} output times", count_output_times(name));
} catch (const quillet::RunEnd& end) {
  return end.what();
}

}  // namespace

int main(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    fmt::print("{}: {}\n", arguments[i], describe(arguments[i]));
  }
}
