// What an input is to an operation, whatever its file format.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "results/extreme_kernels.h"
#include "results/result_dataset.h"
#include "results/result_shape.h"
#include "results/results_record.h"

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

  // The walk over all output times, from the first to the last.
  virtual bool at_end() const = 0;
  virtual float next_time() = 0;  // not at the end
  // Reads the next output time into the record; sets its end-of-file flag when no more follow.
  // Does nothing at the end.
  virtual void read_next(RES_TYPE& record) = 0;
  // Moves past the next output time without reading its values.
  virtual void pass_next() = 0;

  // Reads the output time that was asked for (RunInputs::find_time has been told). Ends the run
  // when there is none within the tolerance.
  virtual void read_at_time(float time, float tolerance, RES_TYPE& record) = 0;

  // The maximum or minimum over the output times, or the stored one unless it is to be ignored.
  // `file` has been reset; `step` is working space. Starts from the first output time.
  virtual void read_extreme(Extreme extreme, bool ignore_stored, RES_TYPE& step,
                            FileExtreme& file) = 0;

  // Everything that the file holds, or only what was selected: scalars, then vectors. The datasets
  // read through this source and do not outlive it; its own walk must not be under way.
  virtual std::vector<std::unique_ptr<ResultDataset>> datasets() = 0;

  virtual void close() = 0;
};

}  // namespace quillet
