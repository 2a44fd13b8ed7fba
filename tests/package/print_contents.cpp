// Prints the header and the output times of a .dat file and the dataset paths of an XMDF file.
#include <dat/dat_reader.h>
#include <fmt/format.h>
#include <xf/xf_file.h>

int main(int, char** arguments) {
  quillet::DatReader reader(arguments[1]);
  reader.read_header();
  const quillet::DatHeader& header = reader.header();
  fmt::print("{} nodes, {} cells, {}\n", header.node_count, header.cell_count, header.name);
  while (!reader.at_end()) fmt::print("{}\n", reader.advance().time);
  quillet::XfFile file;
  std::vector<std::string> paths;
  if (quillet::XF_OPEN_FILE(arguments[2], file).ok() &&
      quillet::XF_GET_SCALAR_DATASET_PATHS(file, paths).ok()) {
    for (const std::string& path : paths) fmt::print("{}\n", path);
  }
}
