#pragma once

#include <QStringList>

#include <string>
#include <vector>

// `veltro clean (--recommended | --category ID ... | --item PATH ...) [--large-threshold-gb X]
//  [--add-root DIR]... [--dry-run] [--yes] [--json] [--purge]`
// `rawItems`: the --item values as the exact bytes of the command line.
int runCleanCommand(const QStringList& arguments, const std::vector<std::string>& rawItems);
