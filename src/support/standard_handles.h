#pragma once

namespace quillet {

// Opens those of standard input, output and error that are closed on the null device. Without it
// the next file that a run opens would get their place: an output would then receive console lines.
// To be called before anything is opened.
void OPEN_STANDARD_HANDLES();

}  // namespace quillet
