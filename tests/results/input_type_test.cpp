#include "results/input_type.h"

#include <gtest/gtest.h>

namespace quillet {
namespace {

struct DatName {
  std::string name;
  std::string type;
  bool is_water_level;
  std::string mesh;
  std::string levels;
};
class DatNames : public ::testing::TestWithParam<DatName> {};

TEST_P(DatNames, TellTypeMeshAndLevels) {
  const InputType type = TYPE_OF_DAT_INPUT(GetParam().name);
  EXPECT_EQ(type.type, GetParam().type);
  EXPECT_EQ(type.is_water_level, GetParam().is_water_level);
  EXPECT_EQ(DEFAULT_MESH_OF_DAT(GetParam().name), GetParam().mesh);
  EXPECT_EQ(WATER_LEVEL_FILE(GetParam().name), GetParam().levels);
}

INSTANTIATE_TEST_SUITE_P(
    All, DatNames,
    ::testing::Values(DatName{"C:\\run\\RES_H.dat", "_h", true, "C:\\run\\RES.2dm",
                              "C:\\run\\RES_h.dat"},
                      DatName{"in/run_V.dat", "_v", false, "in/run.2dm", "in/run_h.dat"},
                      DatName{"a_b_d.dat", "_d", false, "a_b.2dm", "a_b_h.dat"},
                      DatName{"in_h/run.dat", "XX", false, "in_h/run.2dm", "in_h/run_h.dat"},
                      DatName{"run_.dat", "XX", false, "run.2dm", "run_h.dat"},
                      DatName{"run_h(maxmax).dat", "_h(maxmax)", false, "run.2dm", "run_h.dat"}));

TEST(XmdfInputs, HaveTheTypeAskedFor) {
  EXPECT_EQ(TYPE_OF_XMDF_INPUT("V  ").type, "_V");
  EXPECT_EQ(TYPE_OF_XMDF_INPUT("WI10").type, "WI10");
  EXPECT_TRUE(TYPE_OF_XMDF_INPUT("H").is_water_level);
  EXPECT_FALSE(TYPE_OF_XMDF_INPUT("Haz").is_water_level);
  EXPECT_EQ(DEFAULT_MESH_OF_XMDF("in/run_1.xmdf"), "in/run_1.2dm");
  EXPECT_TRUE(SAME_TYPE(TYPE_OF_XMDF_INPUT("V"), TYPE_OF_DAT_INPUT("a_v.dat")));
  EXPECT_FALSE(SAME_TYPE(TYPE_OF_XMDF_INPUT("V"), TYPE_OF_DAT_INPUT("a_vv.dat")));
}

}  // namespace
}  // namespace quillet
