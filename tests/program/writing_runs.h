// One run of every operation that writes, from either kind of file, on small inputs.
#pragma once

#include <string>
#include <vector>

#include "xmdf_builder.h"

namespace quillet::testing {

// The sanitizer makes calls of its own, before and after the program's: which of all calls is to
// fail cannot be told then.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool can_inject_faults = false;
#else
constexpr bool can_inject_faults = true;
#endif

struct WritingRun {
  std::string name;
  std::string arguments;
  std::string output;  // the file whose name says that the output is complete
};

inline void MAKE_INPUTS_OF_WRITING_RUNS(const Workspace& folder) {
  const DatShape scalars{2, 1}, vectors{2, 1, true};
  const std::vector<DatTime> times{{0, {1}, {5, -1}}, {1, {1}, {9, 9}}};
  const std::vector<DatTime> flows{{0, {1}, {5, -1, 2, 3}}};
  for (const std::string name : {"a_d.dat", "b_d.dat"}) {
    folder.write(name, DAT_FILE(scalars, "a", times));
  }
  folder.write("a_V.dat", DAT_FILE(vectors, "v", flows));
  folder.write("a.2dm", "MESH2D\nE3T 1 1 2 1 1\nND 1 0 0 0\nND 2 1 0 0\n");
  folder.write("g.2dm", "MESH2D\nE3T 1 1 2 3 1\nND 1 0 0 0\nND 2 3 0 0\nND 3 0 3 0\n");
  folder.write("g_d.dat", DAT_FILE({3, 1}, "g", {{0, {1}, {5, 1, 2}}, {1, {1}, {9, 7, 8}}}));
  folder.write("g.csv", "name,x,y\nA,1,1\nB,0.5,2\n");
  MAKE_XMDF(folder, "x.xmdf",
            {{"r/Temporal/Depth", scalars, times}, {"r/Temporal/Vector Velocity", vectors, flows}});
}

// What goes through the program's own output unit ...
inline const std::vector<WritingRun> runs_written_to_units{
    {"MaxDat", "-max a_d.dat", "r.dat"},
    {"MinAtTime", "-min -t1 b_d.dat a_d.dat", "r.dat"},
    {"DifDat", "-dif a_d.dat b_d.dat", "r.dat"},
    {"KeepDat", "-k1 a_d.dat", "r.dat"},
    {"RemoveDat", "-r1 a_d.dat", "r.dat"},
    {"RangeDat", "-rangeA0 -rangeB9 a_d.dat", "r.dat"},
    {"ConDat", "-con a_d.dat b_d.dat", "r.dat"},
    {"TimesDat", "-times a_d.dat", "r.txt"},
    {"TimesXmdf", "-times -typed x.xmdf", "r.txt"},
    {"DurDat", "-dur1 a_d.dat", "r.dat"},
    {"ToiDat", "-toi1 a_d.dat", "r.dat"},
    {"TrimDat", "-trim1 a_d.dat", "r.dat"},
    {"VaDat", "-va a_V.dat", "r.dat"},
    {"ConvXmdf", "-conv -typed x.xmdf", "r.dat"},
    {"Xnfo", "-xnfo x.xmdf", "r.txt"},
    {"GridTiff", "--grid=1 g_d.dat", "r.tif"},
    {"GridAscii", "--grid=1 -t1 g_d.dat", "r.asc"},
    {"Points", "--points=g.csv g_d.dat", "r.csv"}};

// ... what HDF5 writes ...
inline const std::vector<WritingRun> runs_written_otherwise{
    {"MaxXmdf", "-max -typed x.xmdf", "r.xmdf"},
    {"DifXmdf", "-dif -typed a_d.dat x.xmdf", "r.xmdf"},
    {"ConXmdf", "-con -typed x.xmdf a_d.dat", "r.xmdf"},
    {"VaXmdf", "-va -typeV x.xmdf", "r.xmdf"},
    {"TrimVectorsXmdf", "-trim1 -typeV x.xmdf", "r.xmdf"},
    {"ConvDat", "-conv a_d.dat", "r.xmdf"}};

// ... and several files, of which the last says that all are there.
inline const std::vector<WritingRun> runs_written_to_file_sets{
    {"EnsightDat", "-ensight a_d.dat", "r.case"},
    {"EnsightXmdf", "-ensight -2dm a.2dm x.xmdf", "r.case"}};

inline std::vector<WritingRun> ALL_WRITING_RUNS() {
  std::vector<WritingRun> all = runs_written_to_units;
  for (const auto& others : {runs_written_otherwise, runs_written_to_file_sets}) {
    all.insert(all.end(), others.begin(), others.end());
  }
  return all;
}

inline RunResult RUN_WRITING(const Workspace& folder, const WritingRun& run,
                             const RunSettings& settings = {}) {
  return RUN(folder, WORDS("-b -nowetdry " + run.arguments + " -out " + run.output), settings);
}

inline std::string NAME_OF_WRITING_RUN(const ::testing::TestParamInfo<WritingRun>& info) {
  return info.param.name;
}

}  // namespace quillet::testing
