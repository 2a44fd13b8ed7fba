// From the checked command line to opened, checked and identified inputs, an opened output and
// sized arrays: everything that an operation needs.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dat/dat_source.h"
#include "driver/operation_table.h"
#include "driver/output_naming.h"
#include "driver/output_type.h"
#include "driver/run_options.h"
#include "operations/operation_job.h"
#include "results/result_sink.h"
#include "results/run_inputs.h"
#include "xmdf/xmdf_file_header.h"

namespace quillet {

struct RunSetup {
  const OperationRow& operation;
  const RunOptions& options;
  OutputNaming naming{};

  std::vector<std::string> input_names{};  // what is opened
  std::optional<std::string> sup_mesh{};   // the mesh that a .sup file names
  std::vector<FileKind> input_kinds{};     // one per input
  FileKind output_kind = FileKind::dat;
  float tolerance = 0;          // hours
  std::optional<float> time{};  // hours; the output time asked for

  std::vector<XmdfFileHeader> xmdf_files{};  // of the inputs that are XMDF files, in order: before
                                             // the inputs, which keep groups of them open
  RunInputs inputs{};
  std::vector<DatSource*> dat_sources{};  // those that are .dat files, in order
  std::unique_ptr<ResultSink> output{};   // none for operations that open theirs themselves
  WorkArrays work{};

  ResultShape shape{};  // of all inputs; with cells when any of them tells their number
  bool is_finite_volume = false;
  bool wet_dry_test = true;
};

// Prints every step; the first that fails ends the run. The operation, the options and the naming
// are set.
void SET_UP_RUN(RunSetup& setup);

// What an operation over output times is given. The output is open.
OperationJob OPERATION_JOB(RunSetup& setup);

}  // namespace quillet
