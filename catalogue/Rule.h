#pragma once

#include "catalogue/CleanCategory.h"
#include "catalogue/Source.h"

#include <vector>

// Binds one category to its sources, evaluated in order.
struct Rule {
    CleanCategory category;
    std::vector<Source> sources;
    bool permanent = false;           // path items are deleted outright instead of trashed
    bool needsFullDiskAccess = false; // skipped entirely without Full Disk Access
};
