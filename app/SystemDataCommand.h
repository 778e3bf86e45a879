#pragma once
// `veltro system-data`: measures the System Data areas over the model the window uses
// (one administrator password, or none when run as root) and prints them; with
// --run ID it performs one area's action instead.

#include <QStringList>

// Returns the process's exit status: 0 done, 1 the analysis or action failed or
// cannot run here, 2 bad arguments or a refused confirmation.
int runSystemDataCommand(const QStringList& arguments);
