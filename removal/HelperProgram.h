#pragma once
// veltro-helper, the only code of Veltro that runs as root: `veltro-helper MODE` with
// the work list for that mode (removal/WorkList.h) on standard input.
//   clean    the administrator batch (removal/HelperBatch.h); exits 0 once the list
//            was accepted, whatever the items' answers
//   measure  the System Data measurement (removal/HelperMeasurement.h); exits 0
//   run      /bin/sh -c with the given text, its output passed through; exits with
//            its status (126, pkexec's dismissal, is reported as 1)
// A list that is incomplete, malformed or for another user is refused with exit 2
// and the reason on standard error, before anything is done.

namespace HelperProgram {

int run(int argc, char* argv[]);

} // namespace HelperProgram
