// The end of a run whose process crashes.
#pragma once

namespace quillet {

struct CrashEnding {
  bool waits_for_enter = true;
  int status = 0;
};

// A crash while a file is at risk (file_at_risk.h) ends the run as every other failure does: with
// one line that names the file and says what is damaged. Nothing is removed or renamed on the way.
// Where the child that tries a file is a copy of its parent nothing is left to crash in the parent,
// and nothing is done.
void END_CRASHES_IN_A_LINE(const CrashEnding& ending);

}  // namespace quillet
