// The same data as .dat and as XMDF: runs on either give equal numbers.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "build_paths.h"
#include "case_names.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

// A map of a .dat output and the dataset that holds the same in an XMDF output.
struct SameMap {
  std::string path;
  float marker;  // its time in the .dat file; 0: the same times
};

struct SameRun {
  std::string operation;
  std::string dat_inputs;
  std::string xmdf_inputs;  // with the selection
  bool has_stored;
  std::string dat_name;  // in the header of the .dat output
  bool is_vector;
  std::vector<SameMap> maps;
};

// The second parameter: how the example model stores its XMDF files.
class SameNumbers : public ::testing::TestWithParam<std::tuple<SameRun, std::string>> {
 protected:
  void make_model(bool has_stored) const {
    const std::string command =
        example_model_path + " --nodes 1000 --times 7 " + std::get<1>(GetParam()) +
        (has_stored ? " " : " --no-stored-maxima ") + folder.path().string() + " > /dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0);
  }

  Workspace folder;
};

std::int32_t count_in(const std::string& dat, std::size_t place) {
  std::int32_t count = 0;
  std::memcpy(&count, dat.data() + place, sizeof count);
  return count;
}

TEST_P(SameNumbers, FromEitherFormat) {
  const SameRun& same = std::get<0>(GetParam());
  make_model(same.has_stored);
  const RunResult dat_run =
      RUN(folder, WORDS("-b " + same.operation + " -out r.dat " + same.dat_inputs));
  const RunResult xmdf_run =
      RUN(folder, WORDS("-b " + same.operation + " -out r.xmdf " + same.xmdf_inputs));
  EXPECT_TRUE(dat_run.ended_well() && xmdf_run.ended_well()) << xmdf_run.output;

  const std::string dat = folder.read("r.dat");
  ASSERT_GT(dat.size(), 92U) << dat_run.output;
  const DatShape shape{count_in(dat, 36), count_in(dat, 44), same.is_vector};
  std::vector<DatTime> times;
  for (const SameMap& map : same.maps) {
    for (DatTime time : READ_XMDF(folder, "r.xmdf", map.path)) {
      if (map.marker != 0) time.time = map.marker;
      times.push_back(std::move(time));
    }
  }
  EXPECT_FALSE(times.empty());
  EXPECT_TRUE(dat == DAT_FILE(shape, same.dat_name, times)) << xmdf_run.output;
}

std::vector<SameMap> maps_of(const std::string& prefix, bool has_times) {
  const std::string folder = prefix + prefix + "/" + prefix + "imums/" + prefix;
  std::vector<SameMap> maps{{folder + " Value", 111111}, {folder + " Source", 222222}};
  if (has_times) maps.push_back({folder + " Time", 333333});
  return maps;
}

SameRun extremes(const std::string& operation, const std::string& dat, const std::string& xmdf,
                 bool has_stored, bool is_vector = false) {
  const std::string prefix = operation.substr(0, 4) == "-max" ? "Max" : "Min";
  const bool is_one_file = dat.find(' ') == std::string::npos;
  return {
      operation, dat, xmdf, has_stored, prefix + " Value", is_vector, maps_of(prefix, is_one_file)};
}

SameRun one_map(const std::string& operation, const std::string& dat, const std::string& xmdf,
                const std::string& dat_name, const std::string& path, bool is_vector = false) {
  return {operation, dat, xmdf, true, dat_name, is_vector, {{path, 0}}};
}

std::vector<SameRun> same_runs() {
  const std::string depths = "run1_d.dat run2_d.dat", levels = "run1_h.dat run2_h.dat",
                    flows = "run1_V.dat run2_V.dat", both = " run1.xmdf run2.xmdf";
  const std::string diff = "Difference/Temporal/diff_run1 - run2";
  return {extremes("-max -ignore_mm", "run1_d.dat", "-typed run1.xmdf", true),
          extremes("-min -ignore_mm", "run1_h.dat", "-typeh run1.xmdf", true),
          extremes("-max -ignore_mm", "run2_V.dat", "-typeV run2.xmdf", true, true),
          extremes("-max", levels, "-typeh" + both, true),
          extremes("-max", levels, "-typeh run1.xmdf run2_h.dat", true),
          extremes("-max -t1.5", flows, "-typev" + both, false, true),
          one_map("-dif -t2", levels, "-typeh" + both, "diff_run1_h - run2_h", diff),
          one_map("-dif -t2", depths, "-typed" + both, "diff_run1_d - run2_d", diff),
          one_map("-dif -nowetdry -t2", flows, "-typeV run1.xmdf run2_V.dat",
                  "diff_run1_V - run2_V", diff + "_V"),
          one_map("-dif -t99999", flows, "-typeV" + both, "diff_run1_V - run2_V",
                  "Difference/Maximums/diff_run1 - run2"),
          one_map("-trim0.5 -t3", "run1_V.dat", "-typeV run1.xmdf", "trim0",
                  "Trim/Temporal/trim0.5", true),
          one_map("-va -t1", "run1_V.dat", "-typeV run1.xmdf", "r",
                  "Velocity Angle/Temporal/Vector Angle")};
}

std::string name_of_case(
    const ::testing::TestParamInfo<std::tuple<SameRun, std::string>>& param_info) {
  const auto& [run, storage] = param_info.param;
  return CASE_NAME(
      run.operation + " " + run.xmdf_inputs + " " + (storage.empty() ? "plain" : storage),
      param_info.index);
}

INSTANTIATE_TEST_SUITE_P(All, SameNumbers,
                         ::testing::Combine(::testing::ValuesIn(same_runs()),
                                            ::testing::Values("", "--compress 1",
                                                              "--compress 6 --times-per-chunk 3")),
                         name_of_case);

TEST(XmdfOutputs, AreWhatNumpyWorksOutFromTheInputs) {
  const std::string command = "/usr/bin/python3 " + tests_folder +
                              "/program/check_xmdf_outputs.py " + program_path + " " +
                              example_model_path;
  EXPECT_EQ(std::system(command.c_str()), 0);
}

}  // namespace
}  // namespace quillet::testing
