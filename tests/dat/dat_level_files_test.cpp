// Which file holds the water levels of another: told from names alone.
#include "dat/dat_level_files.h"

#include <gtest/gtest.h>

#include "dat/dat_names.h"
#include "xmdf/xmdf_names.h"

namespace quillet {
namespace {

TEST(LevelFiles, AreThoseMadeByTheSameOperations) {
  const auto expect = [](const std::string& data, const std::string& alike,
                         const std::string& original, bool of_extreme = false) {
    const LevelFiles levels = LEVEL_FILES(data);
    EXPECT_EQ(levels.made_alike, alike) << data;
    EXPECT_EQ(levels.original, original) << data;
    EXPECT_EQ(levels.of_extreme, of_extreme) << data;
  };
  expect("a/run1_d.dat", "a/run1_h.dat", "a/run1_h.dat");
  expect("run1.dat", "run1_h.dat", "run1_h.dat");
  expect("run1_V(range).DAT", "run1_h(range).dat", "run1_h.dat");
  expect("run1_d(range)(trim0.5).dat", "run1_h(range).dat", "run1_h.dat");
  expect("run1_d(DUR0.3)(k99999)(toi).dat", "run1_h(k99999).dat", "run1_h.dat");
  expect("run1_V_va.dat", "run1_h.dat", "run1_h.dat");
  expect("run1_d(trimmed)(durable).dat", "run1_h(trimmed)(durable).dat", "run1_h.dat");
  expect("run1_d(maxmax).dat", "run1_h(maxmax).dat", "run1_h.dat", true);
  expect("run1_d(minmin)(trim2).dat", "run1_h(minmin).dat", "run1_h.dat", true);
}

TEST(Minima, AreToldByTheBracketsOfTheName) {
  for (const std::string name :
       {"run1_d(minmin).dat", "a/run1_d(MINMIN)(trim2).dat", "run1_d(range) (minmin).dat"}) {
    EXPECT_TRUE(HOLDS_MINIMA(name)) << name;
  }
  for (const std::string name :
       {"run1_d(maxmax).dat", "minmin.dat", "a(minmin)/run1_d.dat", "run1(minmin)_d.dat"}) {
    EXPECT_FALSE(HOLDS_MINIMA(name)) << name;
  }
}

TEST(Types, AreThoseOfTheResultsThatANameBeganWith) {
  const auto expect = [](const std::string& name, const std::string& type,
                         const std::string& mesh) {
    EXPECT_EQ(TYPE_OF_DAT_INPUT(name).type, type) << name;
    EXPECT_EQ(TYPE_OF_DAT_INPUT(name).is_water_level, type == "_h") << name;
    EXPECT_EQ(DEFAULT_MESH_OF_DAT(name), mesh) << name;
  };
  expect("a/run1_h(range).dat", "_h", "a/run1.2dm");
  expect("run1_H(k5)(maxmax).dat", "_h", "run1.2dm");
  expect("run1_h (2).dat", "_h", "run1.2dm");
  expect("run_v1.2_d(maxmax).dat", "_d", "run_v1.2.2dm");
  expect("run1(v_h).dat", "XX", "run1.2dm");
  expect("(run_h).dat", "_h)", "(run.2dm");
  EXPECT_EQ(DEFAULT_MESH_OF_XMDF("none/run1(range).xmdf"), "none/run1.2dm");
}

}  // namespace
}  // namespace quillet
