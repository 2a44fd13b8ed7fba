// Which output times of a dataset are output times of the run.
#include "ensight/variable_plan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>

namespace quillet {
namespace {

class Series : public ResultDataset {
 public:
  explicit Series(std::vector<double> times) : hours(std::move(times)) {}
  const std::string& name() const override { return text; }
  const std::string& description() const override { return text; }
  DatasetKind kind() const override { return DatasetKind::series; }
  bool is_vector() const override { return false; }
  const std::vector<double>& times() const override { return hours; }
  std::string time_text(std::size_t) const override { return {}; }
  bool shares_name() const override { return false; }
  void read(std::size_t, RES_TYPE&) override {}

 private:
  std::string text = "Depth";
  std::vector<double> hours;
};

// The file of every output by the rule: the time that is due where it is near enough, else the
// nearest of all, of equally near ones the last; each once, and 0 where there is none.
std::vector<std::int64_t> numbers_one_by_one(const std::vector<double>& times,
                                             const std::vector<double>& run, double tolerance) {
  std::vector<std::int64_t> numbers;
  std::vector<bool> is_there(run.size());
  std::size_t due = 0;
  for (const double time : times) {
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < run.size(); ++i) {
      const double distance = std::fabs(run[i] - time);
      if (distance <= (found ? std::fabs(run[*found] - time) : tolerance)) found = i;
    }
    if (due < run.size() && std::fabs(run[due] - time) <= tolerance) found = due;
    if (!found || is_there[*found]) continue;
    is_there[*found] = true;
    due = *found + 1;
    numbers.push_back(static_cast<std::int64_t>(*found) + 1);
  }
  return numbers.size() < run.size() ? std::vector<std::int64_t>{} : numbers;
}

TEST(VariablePlans, TakeTheNearestOutputTimesOfTheRun) {
  std::mt19937 random(1);
  int complete = 0;
  for (int round = 0; round < 20000; ++round) {
    const auto any_times = [&](std::size_t count) {
      std::vector<double> times(count);
      for (double& time : times) time = static_cast<double>(random() % 12) / 4;
      return times;
    };
    const std::vector<double> run = any_times(1 + random() % 4);
    Series series(any_times(random() % 12));
    ExportRequest request;
    request.time_tolerance = static_cast<double>(random() % 4) / 4;
    std::vector<std::int64_t> numbers;
    for (const PlannedOutput& output : PLAN_VARIABLE(request, {}, series, run).outputs) {
      numbers.push_back(output.number);
    }
    EXPECT_EQ(numbers, numbers_one_by_one(series.times(), run, request.time_tolerance));
    complete += numbers.empty() ? 0 : 1;
  }
  EXPECT_GT(complete, 5000);
}

}  // namespace
}  // namespace quillet
