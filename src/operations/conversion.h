// -conv: datasets of one file format written in the other.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "results/result_dataset.h"
#include "results/result_sink.h"
#include "results/results_record.h"

namespace quillet {

// One dataset on its way into an output.
struct ConversionItem {
  ResultDataset* dataset = nullptr;
  DatasetKind kind = DatasetKind::series;  // in the output
  std::string dataset_name;                // likewise, where it has names
  std::optional<float> time{};             // hours; written in place of the dataset's own
};

// Writes the datasets (at least one) one after the other and closes the output. `step` is sized for
// the input, with y components when there are vectors among them.
void CONVERT_DATASETS(const std::vector<ConversionItem>& datasets, ResultSink& output,
                      RES_TYPE& step);

}  // namespace quillet
