// Writes the seeds of the fuzz targets: sound files, and command lines with the files of their
// runs.
//   make_seeds <folder>    a folder per target below it
#include <filesystem>
#include <fstream>
#include <string>

#include "dat_builder.h"
#include "xf/xf_writer.h"

namespace quillet::testing {
namespace {

namespace fs = std::filesystem;

void write(const fs::path& file, std::string_view bytes) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

const std::string scalars = DAT_FILE(
    {3, 2}, "depth", {{0, {1, 0}, {1, 2, 3}}, {0.5F, {}, {3, 2, 1}}, {99999, {1, 1}, {3, 2, 3}}});
const std::string maxima = DAT_FILE(
    {3, 2}, "Max Value",
    {{111111, {1, 1}, {3, 2, 3}}, {222222, {1, 1}, {1, 1, 1}}, {333333, {1, 1}, {0, 0, 1}}});
const std::string vectors = DAT_FILE(
    {3, 2, true}, "velocity", {{0, {1, 0}, {1, 0, 0, 1, -1, -1}}, {1, {}, {0, 0, 2, 2, 3, 4}}});

const std::string full_mesh =
    "MESH2D    1.5 2.5 3.5 4.5 5.5 6.5 7.5                                          100.25\n"
    "MESHPART \"Main channel\"\n"
    "ND 1 0.0 -5.0 10.5 1 0.1 0.2 0.3\nND 2 1.0 0.0 11.5 0 0 0 1\nND 3 1 1 1.25D1 2 0 0 1\n"
    "E3T 1 1 2 3 7 21 22 -3 AB\nE4Q 2 1 2 3 3 8 23 24 5\n";
const std::string fv_mesh =
    "MESH2D\nE3T\t1 1 2 3 1\r\nE3T 2 2 1 3 1\nND 2 1e0 0 0\nND 1 0 0 0\nND 3 1 1 -1.5\n";

void write_program_seed(const fs::path& folder, const std::string& name,
                        const std::string& command) {
  write(folder / "program" / name, "-b " + command + "\n@a_h.dat\n" + scalars + "\n@b_h.dat\n" +
                                       maxima + "\n@a_d.dat\n" + scalars + "\n@a_V.dat\n" +
                                       vectors + "\n@a.2dm\n" + fv_mesh + "\n@b.2dm\n" + full_mesh +
                                       "\n@a.sup\nMESH2D a.2dm\nDATA a_h.dat\n");
}

void write_xmdf(const fs::path& name, int compression) {
  fs::create_directories(name.parent_path());
  XfFile file;
  XfFolder folder;
  XfDatasetWriter dataset;
  XfDatasetOptions options;
  options.compression = compression;
  options.times_per_chunk = compression > 0 ? 2 : 1;
  const float values[] = {1, 2, 3};
  const float pairs[] = {1, 2, 3, 4, 5, 6};
  const std::int8_t flags[] = {1, 0};
  bool done = XF_CREATE_FILE(name, file).ok() &&
              XF_CREATE_GENERIC_GROUP(file, "run1/Temporal", folder).ok() &&
              XF_CREATE_SCALAR_DATASET(folder, "Depth", options, dataset).ok();
  for (int output = 0; output < 3; ++output) {
    done = done && XF_WRITE_SCALAR_TIMESTEP(dataset, output, values, {1, 3}).ok() &&
           XF_WRITE_ACTIVITY_TIMESTEP(dataset, flags).ok();
  }
  done = done && XF_CLOSE_GROUP(dataset).ok() &&
         XF_CREATE_VECTOR_DATASET(folder, "Vector Velocity", options, dataset).ok() &&
         XF_WRITE_VECTOR_TIMESTEP(dataset, 0, pairs, {1, 8}).ok() && XF_CLOSE_GROUP(dataset).ok() &&
         XF_CLOSE_GROUP(folder).ok() && XF_CLOSE_FILE(file).ok();
  if (!done) throw fs::filesystem_error("cannot write", name, {});
}

void write_all(const fs::path& folder) {
  write(folder / "dat" / "scalars", scalars);
  write(folder / "dat" / "maxima", maxima);
  write(folder / "dat" / "vectors", vectors);
  write(folder / "mesh" / "full", full_mesh);
  write(folder / "mesh" / "finite_volume", fv_mesh);
  write(folder / "sup" / "names",
        "MESH2D \"run 1.2dm\"\nDATA 'a_h.dat'\ndata b_h.dat\r\nMAP none\n");
  write(folder / "numbers" / "plain", " 1 2.5 -300.125 4e5 1.25D1 99999 0.1,7/");
  const char* const commands[] = {"-max a_h.dat",
                                  "-min -ignore_mm a_d.dat b_h.dat",
                                  "-dif a_h.dat b_h.dat",
                                  "-dif -nowetdry -t99999 a_h.dat a_d.dat",
                                  "-trim0.5 a_V.dat",
                                  "-va a_V.dat",
                                  "-k0.5 a_h.dat",
                                  "-r0.5 a_h.dat",
                                  "-rangeA0 -rangeB0.5 a_h.dat",
                                  "-con a_h.dat a_d.dat",
                                  "-times a_h.dat",
                                  "-dur0.1 a_d.dat",
                                  "-toi0.1 a_d.dat",
                                  "-conv a_d.dat",
                                  "-ensight a_h.dat",
                                  "-max a.sup",
                                  "-xnfo a_h.dat"};
  for (const char* command : commands) {
    const std::string name = std::string(command).substr(1, std::string(command).find(' ') - 1);
    write_program_seed(folder, name, command);
    write(folder / "arguments" / name, command);
  }
  write_xmdf(folder / "xmdf" / "plain", 0);
  write_xmdf(folder / "xmdf" / "deflated", 5);
}

}  // namespace
}  // namespace quillet::testing

int main(int count, char** arguments) {
  if (count != 2) return 1;
  quillet::testing::write_all(arguments[1]);
}
