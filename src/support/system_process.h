// The process of a run, as the system sees it.
#pragma once

namespace quillet {

// First thing in a program that runs for a user, before any file is opened:
// - those of standard input, output and error that are closed are opened on the null device, else
//   the next file would get their place and an output would receive console lines;
// - a console that goes away does not stop a run that is writing a file;
// - a file that becomes too large is an error of the write, which says so;
// - names appear on the console as they are.
void PREPARE_PROCESS();

}  // namespace quillet
