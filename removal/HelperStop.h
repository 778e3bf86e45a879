#pragma once
// When veltro-helper must stop: the user process closed the helper's standard input
// (to stop it, or because it died: the only signal that always reaches a root helper
// from an unprivileged parent), its parent thread ended (PR_SET_PDEATHSIG), or it
// was sent SIGTERM, SIGINT or SIGHUP. The work checks between items and between the
// entries of a deletion or hand-over walk, and ends the tools it started; nothing is
// cut in the middle of a rename.

namespace HelperStop {

// Signal handlers and the parent-death signal; call first thing in main.
void install();

// Watches `fd` (the helper's standard input, after the work list) on a thread of its
// own; its end of file requests the stop.
void watchInput(int fd);

void request();
bool requested();

// Readable once the stop was requested, for poll().
int descriptor();

} // namespace HelperStop
