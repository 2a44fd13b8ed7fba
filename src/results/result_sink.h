// What an output is to an operation, whatever its file format.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "results/dataset_kind.h"
#include "results/result_shape.h"
#include "results/results_record.h"
#include "support/numbers.h"

namespace quillet {

// One of several maps of an output (the maxima, their sources, their times). A format that holds
// several datasets gives each its own, with the dataset time; one that holds a single dataset tells
// them apart by marker times.
struct ResultMap {
  std::string_view dataset_name;  // empty: the output's own, which holds the values themselves
  float dataset_time = 0;         // hours
  float marker_time = 0;          // hours
};

// Names under which results stand in formats that have them.
struct DatasetNames {
  std::string group;
  DatasetKind kind = DatasetKind::series;
  std::string dataset;  // empty: the output's own name
};

// Why an output that began with one value per node cannot take an output time of vectors.
inline std::string VECTORS_AFTER_SCALARS(float time) {
  return "expected one value per node, as at the output times before, found vectors at time " +
         AREAL(time);
}

// A sink never changes the caller's record. Whatever cannot be written ends the run.
class ResultSink {
 public:
  virtual ~ResultSink() = default;

  virtual const std::string& name() const = 0;

  // Tells what will come, before anything is written: the shape of the records (what the file says
  // of itself when none is ever written), and a guess at how many output times, for reserving
  // space.
  virtual void prepare(const ResultShape& shape, std::int64_t likely_time_count) = 0;

  // What follows stands in another dataset of the output's group. Formats that hold a single
  // dataset go on with it; `prepare` has told them what that is.
  virtual void start_dataset(DatasetKind kind, const std::string& dataset, const ResultShape& shape,
                             std::int64_t time_count) = 0;

  // Writes one output time of the output's dataset.
  void write_time(const RES_TYPE& record) { write_time_at(record.time, record); }

  // The same at a time that the record, whose own has 32 bits, may hold less exactly. A format with
  // 32-bit times writes the record's.
  virtual void write_time_at(double hours, const RES_TYPE& record) = 0;

  // Writes one map; the record's own time is not used.
  virtual void write_map(const ResultMap& map, const RES_TYPE& record) = 0;

  // Completes the file and gives it its final name.
  virtual void close() = 0;
};

}  // namespace quillet
