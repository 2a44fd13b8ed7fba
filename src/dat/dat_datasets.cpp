#include "dat/dat_datasets.h"

#include <array>
#include <cmath>
#include <string>

#include "results/special_times.h"
#include "support/file_names.h"
#include "support/run_tally.h"
#include "support/text.h"

namespace quillet {
namespace {

class DatDataset : public ResultDataset {
 public:
  DatDataset(DatReader& dat_reader, DatasetKind dataset_kind)
      : reader(dat_reader), output_kind(dataset_kind) {
    text = BLANK(name()) ? FILENAME(reader.name()) : name();
  }

  const std::string& name() const override { return reader.header().name; }
  const std::string& description() const override { return text; }
  DatasetKind kind() const override { return output_kind; }
  bool is_vector() const override { return reader.header().is_vector; }
  const std::vector<double>& times() const override { return hours; }
  void read(std::size_t output, RES_TYPE& record) override {
    reader.load(steps[output], record);
    NOTE_TIME_READ();
  }

  void add(const DatStep& step) {
    steps.push_back(step);
    hours.push_back(step.time);
  }

 private:
  DatReader& reader;
  DatasetKind output_kind;
  std::string text;
  std::vector<DatStep> steps;
  std::vector<double> hours;
};

DatasetKind kind_of(float time) {
  const auto is = [&](float special) { return std::fabs(time - special) < 0.01F; };
  if (is(stored_maximum_time)) return DatasetKind::maximum;
  if (is(stored_minimum_time)) return DatasetKind::minimum;
  if (is(stored_when_time)) return DatasetKind::special_times;
  return DatasetKind::series;
}

}  // namespace

std::vector<std::unique_ptr<ResultDataset>> LIST_DAT_DATASETS(DatReader& reader) {
  constexpr std::array kinds{DatasetKind::series, DatasetKind::maximum, DatasetKind::minimum,
                             DatasetKind::special_times};
  std::vector<DatStep> steps;
  while (!reader.at_end()) steps.push_back(reader.advance());

  std::vector<std::unique_ptr<ResultDataset>> datasets;
  for (const DatasetKind kind : kinds) {
    auto dataset = std::make_unique<DatDataset>(reader, kind);
    for (const DatStep& step : steps) {
      if (kind_of(step.time) == kind) dataset->add(step);
    }
    if (!dataset->times().empty()) datasets.push_back(std::move(dataset));
  }
  return datasets;
}

}  // namespace quillet
