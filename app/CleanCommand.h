#pragma once

#include <QStringList>

// `veltro clean (--recommended | --category ID ... | --item PATH ...) [--large-threshold-gb X]
//  [--add-root DIR]... [--dry-run] [--yes] [--json] [--purge]`
int runCleanCommand(const QStringList& arguments);
