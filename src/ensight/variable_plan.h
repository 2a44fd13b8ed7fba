// Which outputs of which datasets become which variable files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ensight/ensight_export.h"

namespace quillet {

struct PlannedOutput {
  std::size_t output = 0;   // of the dataset, from 0
  std::int64_t number = 0;  // of the file, from 1
};

struct VariablePlan {
  ResultDataset* dataset = nullptr;
  bool is_series = false;
  std::string file_ending;              // of the file base; made fit for a file name later
  std::string output_name;              // wanted; made fit and distinct later
  std::string title;                    // shown on the console: "Time of Peak h"
  std::string description;              // first line of the files
  std::vector<PlannedOutput> outputs;   // none: the dataset is passed over
  std::int64_t unexpected_outputs = 0;  // that fit no output time of the run
  bool has_too_many = false;            // outputs; those past the largest number are left out
};

// The output times of the run.
struct RunTimes {
  std::vector<double> hours;
  std::vector<std::string> texts;

  bool ascend() const;
};

// Those of its first series. Where no input has a series they are those of the first dataset with
// several outputs in a folder that says nothing. A time that is not a number is none.
RunTimes RUN_TIMES(const std::vector<EnsightInput>& inputs);

// A series has a file for every output time of the run, or it is passed over: a case file must not
// point to what is not there. Its other outputs are left out. Of a dataset that does not change
// with time the last output counts.
VariablePlan PLAN_VARIABLE(const ExportRequest& request, const EnsightInput& input,
                           ResultDataset& dataset, const std::vector<double>& run_times);

}  // namespace quillet
