// Which files a conversion writes, and what stands in each.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "driver/file_formats.h"
#include "operations/conversion.h"
#include "results/input_type.h"
#include "results/result_dataset.h"

namespace quillet {

// One file that a conversion writes.
struct ConversionTarget {
  FileKind kind = FileKind::dat;
  std::string file_name;
  std::string group;  // of an XMDF target
  std::vector<ConversionItem> datasets;
};

using ResultDatasets = std::vector<std::unique_ptr<ResultDataset>>;

// A .dat file becomes one XMDF file of the same name. Ordinary output times go to the folder
// Temporal, stored maxima, minima and times of maxima beside it; the dataset is named after the
// type that the file's suffix tells, or after the file.
ConversionTarget PLAN_XMDF_TARGET(const std::string& input, const InputType& type,
                                  const ResultDatasets& datasets);

// An XMDF file becomes one .dat file for each result type in it, named after the type's code: the
// time series, then the stored maximum as the output time 99999. A dataset that the user selected
// by its path or its place in the list is named after itself, whatever its type and folder.
std::vector<ConversionTarget> PLAN_DAT_TARGETS(const std::string& input, bool is_selected_by_itself,
                                               const ResultDatasets& datasets);

}  // namespace quillet
