// Interrupts (Ctrl-C, the end of a batch job, a terminal that closes): the first one asks the run
// to end, which it does as after any failure, closing what is open; a second one kills it.
#pragma once

namespace quillet {

// From here on interrupts are noted. Those that whoever started the program had ignored stay
// ignored.
void NOTE_INTERRUPTS();

// True once an interrupt has come. Any thread may ask.
bool INTERRUPTED();

// Waits until standard input can be read, or is at its end. False when an interrupt comes first.
// What the C library has read ahead does not count.
bool AWAIT_INPUT();

// Ends the process by the interrupt that came, so that a shell's loop ends with it. Does nothing
// when none came.
void DIE_OF_INTERRUPT();

}  // namespace quillet
