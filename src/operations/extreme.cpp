#include "operations/extreme.h"

#include <algorithm>
#include <optional>

#include "mesh/load_mesh.h"
#include "mesh/node_kinds.h"
#include "operations/extreme_scan.h"
#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/reading_ahead.h"

namespace quillet {
namespace {

// The maps of an output. The values stand under the output's own dataset name.
struct MapSet {
  ResultMap values;
  ResultMap sources;
  ResultMap times;
};

constexpr MapSet maximum_maps{{"", maximum_marker_time, maximum_marker_time},
                              {"Max Source", maximum_marker_time, source_marker_time},
                              {"Max Time", maximum_marker_time, when_marker_time}};
constexpr MapSet minimum_maps{{"", minimum_marker_time, minimum_marker_time},
                              {"Min Source", minimum_marker_time, source_marker_time},
                              {"Min Time", minimum_marker_time, when_marker_time}};

// The file's record for one input: over all output times, or at the time asked for.
void read_file_extreme(Extreme extreme, OperationJob& job, ResultSource& source) {
  FileExtreme& file = job.work.file;
  if (job.time) {
    source.read_at_time(*job.time, job.tolerance, file.record);
    if (file.record.is_vector != job.shape.is_vector) {
      FAIL_READING(source.name(),
                   "expected vectors at time " + AREAL(*job.time) + ", found one value per node");
    }
    ADOPT_STORED_EXTREME(*job.time, file);
  } else {
    SCAN_FOR_EXTREME(extreme, job.ignore_stored, source, file);
  }
}

// Only levels of dry nodes mean nothing; every other quantity is 0 there.
bool needs_mesh(const OperationJob& job) {
  const auto& types = job.inputs.types;
  return job.wet_dry_test && !job.shape.is_vector &&
         std::any_of(types.begin(), types.end(),
                     [](const InputType& type) { return type.is_water_level; });
}

// What is read after the mesh.
FileStretch first_values(Extreme extreme, const OperationJob& job) {
  ResultSource& source = *job.inputs.sources.front();
  FileStretch values = source.stretch_ahead();
  const bool are_read = !job.time && MAY_BE_READ_AHEAD(values) &&
                        SCAN_READS_ALL_TIMES(extreme, job.ignore_stored, source);
  return are_read ? values : FileStretch();
}

// The mesh that tells which nodes belong to active cells, of the first input: all share its counts.
MESH_GEOMETRY_TYPE load_mesh(const OperationJob& job) {
  SAY("...need to read .2dm file for _h data type");
  MESH_GEOMETRY_TYPE mesh;
  LOAD_MESH(job.inputs.types.front().mesh_file, job.shape.node_count, job.shape.cell_count, mesh);
  return mesh;
}

// Inputs that tell no activity have every cell of the mesh active.
void size_unknown_cells(OperationJob& job, const MESH_GEOMETRY_TYPE& mesh) {
  if (job.shape.cell_count) return;
  WorkArrays& work = job.work;
  SIZE_STATUSES(work.result, mesh.element_count);
  SIZE_STATUSES(work.file.record, mesh.element_count);
}

void set_initial_statuses(Extreme extreme, RES_TYPE& record) {
  std::fill(record.cell.status.begin(), record.cell.status.end(), INITIAL_STATUS(extreme));
}

// The work arrays are new: their values and times need not be reset for the first input.
void fold_inputs(Extreme extreme, OperationJob& job,
                 const std::optional<MESH_GEOMETRY_TYPE>& mesh) {
  RES_TYPE& overall = job.work.result;
  std::vector<std::uint8_t> node_counts;
  set_initial_statuses(extreme, overall);
  set_initial_statuses(extreme, job.work.file.record);
  if (job.time) job.inputs.find_time(*job.time, job.tolerance);
  for (std::size_t input = 0; input < job.inputs.sources.size(); ++input) {
    if (input > 0) RESET_FILE_EXTREME(extreme, job.work.file);
    read_file_extreme(extreme, job, *job.inputs.sources[input]);
    const bool restricted = mesh && job.inputs.types[input].is_water_level;
    if (restricted) {
      MARK_NODES_OF_ACTIVE_CELLS(*mesh, job.work.file.record.cell.status, node_counts);
    }
    FOLD_FILE(extreme, job.work.file, static_cast<std::int32_t>(input) + 1,
              restricted ? &node_counts : nullptr, overall);
  }
}

// The source and time maps are scalars over the same cells; the values are written by then and
// their place is used again.
void write_maps(Extreme extreme, OperationJob& job) {
  SAY("Writing Output");
  const MapSet& maps = extreme == Extreme::maximum ? maximum_maps : minimum_maps;
  const bool has_times = job.inputs.sources.size() == 1 && !job.time;
  RES_TYPE& overall = job.work.result;
  job.output.prepare(SHAPE_OF(overall), has_times ? 3 : 2);
  job.output.write_map(maps.values, overall);

  overall.is_vector = false;
  std::copy(overall.nd.source.begin(), overall.nd.source.end(), overall.nd.x.begin());
  job.output.write_map(maps.sources, overall);
  if (!has_times) return;

  overall.nd.x.swap(job.work.file.time);
  job.output.write_map(maps.times, overall);
}

}  // namespace

void RUN_EXTREME(Extreme extreme, OperationJob& job) {
  SAY("Allocating secondary arrays for time of max / min.");
  SAY("Done.");
  if (job.time && job.inputs.sources.size() < 2) {
    FAIL_RUN(
        "ERROR - expecting two or more files when using -max or -min with a specified time (-t)");
  }
  if (job.ignore_stored) {
    SAY("-Ignore_MM specified - Ignoring stored maximums or minimums if they exist.");
  }
  std::optional<ReadingAhead> ahead;  // of the mesh, and then of the scan as far as it goes
  std::optional<MESH_GEOMETRY_TYPE> mesh;
  if (needs_mesh(job)) {
    ahead.emplace(first_values(extreme, job));
    mesh = load_mesh(job);
    size_unknown_cells(job, *mesh);
  }
  fold_inputs(extreme, job, mesh);
  ahead.reset();
  write_maps(extreme, job);
  SAY("Closing input file");
  for (const auto& source : job.inputs.sources) source->close();
  job.output.close();
}

}  // namespace quillet
