// Reads a .dat dataset: the header, then one output time after the other. The size of an output
// time is known beforehand, so moving past one reads its head only. Prints nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dat/dat_header_reader.h"
#include "dat/dat_layout.h"
#include "results/output_pieces.h"
#include "results/results_record.h"
#include "support/input_unit.h"

namespace quillet {

// Where one output time stands in the file; positions are bytes from its start.
struct DatStep {
  float time = 0;                // hours
  bool is_vector = false;        // two values per node
  std::int64_t statuses_at = 0;  // the statuses in force; 0 when the file has stated none so far
  std::int64_t values_at = 0;
};

// Neighbouring nodes, cells or values.
struct DatStretch {
  std::int64_t first = 0;  // index, from 0
  std::int64_t count = 0;
};

// All values of an output time.
struct DatValues {
  std::int64_t at = 0;     // bytes from the start of the file
  std::int64_t count = 0;  // 32-bit reals
  int components = 1;      // of them per node
};

class SharedValues;

class DatReader {
 public:
  // Opens the file (see InputUnit).
  explicit DatReader(const std::string& file_name);
  ~DatReader();

  const std::string& name() const { return file.name(); }
  const DatHeader& header() const { return file_header; }

  // Goes to the start of the file and reads the header.
  void read_header();

  // Ends the run when the counts cannot be true: none stated, negative, a first output time that
  // would not fit in the file, or a large number of cells although no output time states statuses.
  // A file without output times may state what it likes. To be called before anything is sized.
  void check_counts();

  void close() { file.close(); }

  // How many output times the rest of the file holds if all of them state statuses.
  std::int64_t likely_time_count() const;

  bool at_end() const {
    look_for_step();
    return !step_follows;
  }

  // What has not been passed yet.
  FileStretch rest() const { return {file.name(), position, file.size()}; }

  // At the end, once that has been asked: whether the file goes on with something that is no output
  // time.
  bool holds_more() const { return more_follows; }

  // Hours of the output time that follows. Ends the run when the file stops inside its head.
  float next_time();

  // Moves past the output time that follows. Ends the run when the file stops inside it.
  DatStep advance();

  // Moves past the output time that follows; nothing when the file stops inside it.
  std::optional<DatStep> try_advance();

  // Fills values, statuses, time and the vector flag of a record sized for this file. Statuses that
  // the file has not stated are 1.
  void load(const DatStep& step, RES_TYPE& record);

  // The values of some nodes, of vectors the x components.
  void read_values(const DatStep& step, const DatStretch& nodes, float* values);

  // All of it piece by piece, statuses first; `cell_count` is that of the run. Helpers share the
  // values where there are many.
  void load_in_pieces(const DatStep& step, std::int32_t cell_count, OutputPieces& pieces);

  // Only these nodes and cells (indices, ascending) of what is loaded from now on are needed. Where
  // they lie far apart, load() reads the bytes around them alone and leaves all others as they
  // were.
  void limit_to(const std::vector<std::int32_t>& nodes, const std::vector<std::int32_t>& cells);

  // The walk's place in the file, to come back to.
  struct Place {
    std::int64_t position = 0;
    std::int64_t statuses_in_force = 0;
    bool step_follows = false;
  };
  Place place() const {
    look_for_step();
    return {position, statuses_in_force, step_follows};
  }
  void return_to(const Place& place);

 private:
  struct StepHead {
    bool states_statuses = false;
    float time = 0;
  };
  struct Extent {
    std::int64_t statuses = 0;
    std::int64_t values = 0;
  };

  StepHead read_head() const;
  static StepHead head_from(const char* bytes);
  bool has_vectors_at(float time) const;
  Extent extent_of(const StepHead& head) const;
  [[noreturn]] void fail_cut_short(const StepHead& head) const;
  void look_for_step() const;
  bool states_statuses_later();
  void read_bytes(std::int64_t from, void* destination, std::int64_t count, const char* what);
  void load_statuses_in_pieces(const DatStep& step, std::int32_t count, OutputPieces& pieces);
  void load_statuses(std::int64_t from, RES_TYPE& record);
  void load_values(const DatStep& step, RES_TYPE& record);
  void load_vectors(std::int64_t from, const DatStretch& stretch, float* x, float* y);

  InputUnit file;
  DatHeader file_header;
  bool counts_stated = false;
  bool holds_marker_maps = false;             // its first output time is this program's maximum
  mutable bool has_looked = true;             // at the card after the last output time, that is
  mutable bool step_follows = false;          // the last card read was that of an output time
  mutable bool more_follows = false;          // something else than an output time follows
  mutable std::optional<StepHead> next_head;  // what stands there, once it has been read
  mutable std::int64_t position = 0;          // just after that card
  std::int64_t statuses_in_force = 0;         // where they stand; 0 none so far
  std::unique_ptr<SharedValues> shared_values;
  LargeArray<float> piece;  // what has been read of the values or the statuses
  std::optional<std::vector<DatStretch>> needed_nodes;  // not given: all
  std::optional<std::vector<DatStretch>> needed_cells;
};

}  // namespace quillet
