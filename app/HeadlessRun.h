#pragma once
// Driving the application model without a window: the headless commands run the
// very model the window uses, so both order, select and clean alike.

#include "model/AppModel.h"

#include <functional>

namespace HeadlessRun {

// Processes events until `done` holds. Returns false if `timeoutMs` passed first
// (a negative timeout waits for ever).
bool waitUntil(const std::function<bool()>& done, int timeoutMs = -1);

// Runs one full scan on `model`; with `showProgress`, a live line on stderr
// ("Scanning {title}…" with the percentage), erased at the end.
void scan(AppModel& model, bool showProgress);

// True when file descriptor `fd` is a terminal.
bool isTerminal(int fd);

} // namespace HeadlessRun
