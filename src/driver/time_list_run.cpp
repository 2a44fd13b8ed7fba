#include "driver/time_list_run.h"

#include "driver/output_opening.h"
#include "operations/time_list.h"

namespace quillet {

void LIST_TIMES_OF_INPUT(RunSetup& setup) {
  REFUSE_INPUT_AS_OUTPUT(setup, setup.naming.base_file_name);
  LIST_OUTPUT_TIMES(*setup.inputs.sources.front(), setup.naming.base_file_name);
}

}  // namespace quillet
