// Ctrl-C in twcalc: while a line is being worked on (evaluated, converted to
// text, written), SIGINT raises the library's terminate flag and a flag of
// our own that the output loops and the line readers poll; the session goes
// on.  At the prompt of a terminal it abandons the line being typed; when the
// input is not a terminal, SIGINT between lines ends the program as usual.
#pragma once

namespace twcalc {

// Installs the SIGINT handler, without SA_RESTART so that a blocking read or
// write returns and the flag gets looked at.
void installInterruptHandler(bool interactive);

// Brackets the work on one line: clears both flags on entry.
void beginWork();
void endWork();

bool interruptRequested();
void clearInterrupt();

}  // namespace twcalc
