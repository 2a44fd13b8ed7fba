// What an input is to an operation, whatever its file format.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "results/extreme.h"
#include "results/output_pieces.h"
#include "results/result_dataset.h"
#include "results/result_shape.h"
#include "results/results_record.h"
#include "support/input_unit.h"

namespace quillet {

// Times are hours. Records are sized by the caller with the counts of the run. A source prints what
// its format has to say about each reading. Anything that cannot be read ends the run.
class ResultSource {
 public:
  virtual ~ResultSource() = default;

  virtual const std::string& name() const = 0;
  virtual ResultShape shape() const = 0;

  // How many output times the file holds, for reserving space: a guess.
  virtual std::int64_t likely_time_count() const = 0;

  // Of what is read from now on, only the values of these nodes and the statuses of these cells
  // (indices, ascending) are looked at: a source may leave all others as they were.
  virtual void limit_to(const std::vector<std::int32_t>& nodes,
                        const std::vector<std::int32_t>& cells) = 0;

  // Where the values of the walk begin, for who reads them ahead: a hint, empty where a file has
  // them in many places.
  virtual FileStretch stretch_ahead() const { return {}; }

  // Whether there is a walk over output times; to be asked where stored extremes alone would do.
  virtual bool has_walk() const { return true; }

  // The walk over all output times, from the first to the last.
  virtual bool at_end() const = 0;
  virtual double next_time() = 0;  // not at the end
  // Whether the file's times are 32-bit reals, which differ a little from what they stand for.
  virtual bool has_short_times() const = 0;
  // Reads the next output time into the record; sets its end-of-file flag when no more follow.
  // Does nothing at the end.
  virtual void read_next(RES_TYPE& record) = 0;
  // Moves past the next output time without reading its values.
  virtual void pass_next() = 0;

  // Reads the output time that was asked for (RunInputs::find_time has been told). Ends the run
  // when there is none within the tolerance.
  virtual void read_at_time(float time, float tolerance, RES_TYPE& record) = 0;

  // The maximum (minimum) that the file keeps apart from the walk, as engines that track extremes
  // write it. To be read only when there is one.
  virtual bool has_stored(Extreme) const { return false; }
  virtual void read_stored(Extreme, RES_TYPE&) {}
  // Whether they write it at the end of the walk instead.
  virtual bool stored_extremes_end_walk() const { return false; }

  // The walk of a scan, which takes the values of some output times only; `sought` is what it looks
  // for ("maximums"). Without output times nothing begins, nor ends.
  virtual void begin_scan(std::string_view sought) = 0;
  // The output times that follow, as far as they can be told. Says nothing.
  virtual std::vector<float> times_ahead() = 0;
  // Moves to the next output time, not at the end.
  virtual float scan_next() = 0;
  // Reads the output time that the scan has moved to; without statuses all of `cell_count` cells
  // are active.
  virtual void read_scanned(std::int32_t cell_count, OutputPieces& pieces) = 0;
  virtual void end_scan() = 0;

  // Everything that the file holds, or only what was selected: scalars, then vectors. The datasets
  // read through this source and do not outlive it; its own walk must not be under way.
  virtual std::vector<std::unique_ptr<ResultDataset>> datasets() = 0;

  virtual void close() = 0;  // and says so; what is not closed so is closed with the run
};

}  // namespace quillet
