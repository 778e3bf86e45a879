#pragma once

#include <QStringList>

// `veltro scan [--json] [--large-threshold-gb X] [--add-root DIR]...`
int runScanCommand(const QStringList& arguments);
