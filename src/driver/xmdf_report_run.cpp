#include "driver/xmdf_report_run.h"

#include "driver/output_opening.h"
#include "support/console.h"
#include "xmdf/xmdf_headers.h"
#include "xmdf/xmdf_report.h"

namespace quillet {
namespace {

void check_inputs(const RunSetup& setup) {
  for (const FileKind kind : setup.input_kinds) {
    if (kind != FileKind::xmdf) FAIL_RUN("ERROR - All files must be .xmdf files for -xnfo option.");
  }
}

}  // namespace

void REPORT_XMDF_INPUTS(RunSetup& setup) {
  SAY("Extracting information from .xmdf files.");
  check_inputs(setup);
  const bool is_single = setup.xmdf_files.size() == 1;
  if (setup.naming.user_named && !is_single) {
    SAY("WARNING - -out option can only be used with a single input file for -xnfo.");
    SAY("Specifed output name ignored.");
  }
  ReadXmdfDatasetNames(setup.xmdf_files);
  for (XmdfFileHeader& header : setup.xmdf_files) {
    const std::string report = setup.naming.user_named && is_single
                                   ? setup.naming.base_file_name
                                   : header.file_name + "_xmdf_info.txt";
    REFUSE_INPUT_AS_OUTPUT(setup, report);
    WRITE_XMDF_REPORT(header, report);
  }
}

}  // namespace quillet
