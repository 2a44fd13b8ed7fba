#include "operations/conversion.h"

#include "support/console.h"
#include "support/numbers.h"

namespace quillet {
namespace {

// Of several stored extremes the last counts.
std::size_t first_output(const ResultDataset& dataset) {
  const bool is_extreme =
      dataset.kind() == DatasetKind::maximum || dataset.kind() == DatasetKind::minimum;
  const std::size_t count = dataset.times().size();
  return is_extreme && count > 1 ? count - 1 : 0;
}

std::size_t output_count(const ResultDataset& dataset) {
  return dataset.times().size() - first_output(dataset);
}

void write_dataset(const ConversionItem& item, ResultSink& output, RES_TYPE& step) {
  ResultDataset& dataset = *item.dataset;
  const std::size_t count = dataset.times().size();
  step.is_vector = dataset.is_vector();
  output.start_dataset(item.kind, item.dataset_name, SHAPE_OF(step),
                       static_cast<std::int64_t>(output_count(dataset)));
  for (std::size_t i = first_output(dataset); i < count; ++i) {
    SAY("Converting " + item.dataset_name + " at time " +
        AREAL(static_cast<float>(dataset.times()[i])));
    dataset.read(i, step);
    if (item.time) step.time = *item.time;
    output.write_time(step);
  }
}

}  // namespace

void CONVERT_DATASETS(const std::vector<ConversionItem>& datasets, ResultSink& output,
                      RES_TYPE& step) {
  std::size_t times = 0;
  for (const ConversionItem& item : datasets) times += output_count(*item.dataset);
  step.is_vector = datasets.front().dataset->is_vector();
  output.prepare(SHAPE_OF(step), static_cast<std::int64_t>(times));
  for (const ConversionItem& item : datasets) write_dataset(item, output, step);
  output.close();
}

}  // namespace quillet
