// One dataset of an input, whatever its file format, for operations that take everything that a
// file holds. An input that is a single dataset is taken apart: its ordinary output times are a
// series, stored maxima, minima and times of maxima stand beside it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "results/dataset_kind.h"
#include "results/results_record.h"

namespace quillet {

class ResultDataset {
 public:
  virtual ~ResultDataset() = default;

  virtual const std::string& name() const = 0;         // "Depth"
  virtual const std::string& description() const = 0;  // for readers: the name, else the file's
  virtual DatasetKind kind() const = 0;
  virtual bool is_vector() const = 0;
  virtual const std::vector<double>& times() const = 0;  // hours, one per output

  // The time of an output as the file has it, a 32-bit or a 64-bit number: the shortest plain
  // decimal that reads back to it.
  virtual std::string time_text(std::size_t output) const = 0;

  // True where the input has one name for all its datasets (.dat), so that only their kinds tell
  // them apart.
  virtual bool shares_name() const = 0;

  // Reads one output (from 0) into a record sized for the input's mesh, with y components when the
  // dataset is a vector; sets its time and vector flag. Cheapest from the first to the last.
  // Whatever cannot be read ends the run.
  virtual void read(std::size_t output, RES_TYPE& record) = 0;
};

}  // namespace quillet
