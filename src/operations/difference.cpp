#include "operations/difference.h"

#include <cmath>
#include <optional>
#include <string>

#include "mesh/read_2dm_elevations.h"
#include "operations/difference_kernel.h"
#include "operations/output_time_loop.h"
#include "results/time_pairing.h"
#include "support/console.h"
#include "support/numbers.h"

namespace quillet {
namespace {

// One of the two inputs: its results, its levels, and the output time that they hold.
struct ComparedInput {
  const char* ordinal;
  ResultSource& source;
  WaterLevels* levels;  // none without the wet/dry test
  RES_TYPE& record;

  // Moves past what is no result.
  bool exhausted() {
    PASS_MARKER_MAPS(source);
    return source.at_end();
  }

  // Moves on to the next output time; false when there is none.
  bool advance() {
    if (exhausted()) return false;
    source.read_next(record);
    if (levels != nullptr) levels->read_next(record);
    return true;
  }

  bool skip() {
    SAY(std::string("Skipping time in ") + ordinal + " data file, time: " + AREAL(record.time));
    return advance();
  }

  void read_at_time(float time, float tolerance) {
    source.read_at_time(time, tolerance, record);
    if (levels != nullptr) levels->read_at_time(time, tolerance, record);
  }
};

struct Comparison {
  OperationJob& job;
  ComparedInput first;
  ComparedInput second;

  // Of both records, as they were read.
  void tell_of_records() const {
    constexpr float unequal_times = 0.001F;
    SAY("Processing difference results.");
    if (std::fabs(first.record.time - second.record.time) > unequal_times) {
      SAY("Warning - Timesteps do not match.");
    }
    if (first.record.is_vector && !second.record.is_vector) {
      FAIL_RUN("ERROR - Second data for -dif option is not a vector.");
    }
  }

  // Of the nodes of the records, as they were read.
  WetDryArrays wet_dry_arrays(std::int64_t first_node, std::int64_t count) {
    const auto& bed = job.work.bed;
    return {first.levels->levels(first.record, first_node, count),
            second.levels->levels(second.record, first_node, count), bed[0].data() + first_node,
            bed[1].data() + first_node};
  }

  // The difference takes the place of the first record.
  void write_difference() {
    tell_of_records();
    if (job.wet_dry_test) {
      const auto pieces = [&](auto node, auto count) { return wet_dry_arrays(node, count); };
      DIFFERENCE_WHERE_WET(first.record, second.record, pieces, first.record);
    } else {
      DIFFERENCE(first.record, second.record, first.record);
    }
    job.output.write_time(first.record);
  }

  // Moves one input on. When the second run's time is the smaller it is the first input, the one
  // with the larger time, that moves: see docs/compatibility.md.
  bool skip_unpaired() {
    SAY("WARNING - Inconsistent times were found: " + AREAL(first.record.time) + " " +
        AREAL(second.record.time));
    return second.record.time < first.record.time ? first.skip() : second.skip();
  }

  void compare_all() {
    std::optional<float> last_pair;
    bool end_together = false;
    bool has_times = first.advance() && second.advance();
    while (has_times) {
      if (TIMES_MATCH(first.record.time, second.record.time)) {
        write_difference();
        last_pair = first.record.time;
        end_together = first.exhausted() && second.exhausted();
        has_times = first.advance() && second.advance();
      } else {
        has_times = skip_unpaired();
      }
    }
    if (!last_pair) {
      SAY("WARNING - No output times in common.");
    } else if (!end_together) {
      SAY("WARNING - Compared up to time " + AREAL(*last_pair) + ".");
    }
  }

  void compare_at(float time) {
    job.inputs.find_time(time, job.tolerance);
    first.read_at_time(time, job.tolerance);
    second.read_at_time(time, job.tolerance);
    write_difference();
  }
};

void warn_of_types(const OperationJob& job) {
  if (SAME_TYPE(job.inputs.types[0], job.inputs.types[1])) return;
  SAY("WARNING - Files should be same data type, e.g. both water level.");
  SAY("Unexpected results may occur.");
}

void read_bed_elevations_of(const std::string& mesh_file, std::int32_t node_count,
                            LargeArray<float>& bed) {
  CornerArrays corners;
  READ_2DM_ELEVATIONS(InputUnit(mesh_file), bed, node_count, corners, std::nullopt);
}

void read_bed_elevations(OperationJob& job) {
  SAY("...need to also read .2dm files");
  const std::string& mesh1 = job.inputs.types[0].mesh_file;
  const std::string& mesh2 = job.inputs.types[1].mesh_file;
  read_bed_elevations_of(mesh1, job.shape.node_count, job.work.bed[0]);
  if (mesh1 == mesh2) {
    job.work.bed[1] = job.work.bed[0];
  } else {
    read_bed_elevations_of(mesh2, job.shape.node_count, job.work.bed[1]);
  }
  SAY("Finished reading .2dm files.");
}

void open_water_levels(OperationJob& job) {
  if (job.inputs.types[0].is_water_level) return;
  SAY("...need to read water level data.");
  SAY("Allocating water level arrays.");
  SAY("...need to also read first _h.dat file");
  job.inputs.water_levels[0]->open(job.shape);
  SAY("...need to also read second _h.dat file");
  job.inputs.water_levels[1]->open(job.shape);
}

ComparedInput compared_input(OperationJob& job, std::size_t input, const char* ordinal,
                             RES_TYPE& record) {
  WaterLevels* const levels = job.wet_dry_test ? job.inputs.water_levels[input].get() : nullptr;
  return {ordinal, *job.inputs.sources[input], levels, record};
}

}  // namespace

void RUN_DIFFERENCE(OperationJob& job) {
  if (job.inputs.sources.size() > 2) FAIL_RUN("ERROR - Maximum of two files for -dif option.");
  warn_of_types(job);
  SAY("Allocating secondary arrays for results storage.");
  SAY("Done.");
  if (job.wet_dry_test) {
    read_bed_elevations(job);
    open_water_levels(job);
  }
  ResultShape written = SHAPE_OF(job.work.step);
  written.is_vector = false;
  job.output.prepare(written, job.time ? 1 : job.inputs.sources[0]->likely_time_count());

  Comparison comparison{job, compared_input(job, 0, "first", job.work.step),
                        compared_input(job, 1, "second", job.work.second_step)};
  if (job.time) {
    comparison.compare_at(*job.time);
  } else {
    comparison.compare_all();
  }
  SAY("Closing files and exiting");
  job.output.close();
}

}  // namespace quillet
