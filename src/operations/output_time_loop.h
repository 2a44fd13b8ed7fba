// The loop that operations on one input share: every output time in turn, or the one asked for.
#pragma once

#include <functional>
#include <string_view>

#include "operations/operation_job.h"

namespace quillet {

// Says which output times are taken: the text for one time is followed by the time.
void ANNOUNCE_OUTPUT_TIMES(const OperationJob& job, std::string_view one_time,
                           std::string_view all_times);

// What is said of an output time that is none of the simulation (stored maxima and minima); empty
// for ordinary ones. A time that is not a number ends the run.
std::string_view WHY_NOT_ORDINARY(const ResultSource& source, double time);

// Moves past the maps of sources and times that follow: they are no results.
void PASS_MARKER_MAPS(ResultSource& source);

// Reads the output time asked for, or every one in turn, from the first input into the step record,
// lets `change` work on it, and writes it. `written` tells the output what will come.
void REWRITE_OUTPUT_TIMES(OperationJob& job, const ResultShape& written,
                          const std::function<void(RES_TYPE& step)>& change);

// "Closing files and exiting" between empty lines, then closes the output.
void CLOSE_FILES_AND_EXIT(OperationJob& job);

}  // namespace quillet
