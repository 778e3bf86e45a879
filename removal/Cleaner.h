#pragma once
// Removes chosen items, each by its own method, and reports what happened. Items it
// may not touch itself go to one administrator batch at the end, so the password
// is asked for at most once per clean. Removal never follows a symbolic link it did
// not mean to and never touches anything outside the item.

#include "catalogue/ScanItem.h"
#include "removal/CleanResult.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Cleaner {

// fraction 0…1 and a one-line text; called from the cleaning thread.
using Progress = std::function<void(double fraction, const std::string& text)>;

// One pair of the privileged work list: delete (permanent) or move to the Trash.
struct PrivilegedWork {
    ScanItem item;
    bool permanent = false;
};

struct PurgeResult {
    int64_t freed = 0;
    int failed = 0;
    bool operator==(const PurgeResult&) const = default;
};

// The whole pass, blocking; run it off the interface thread.
CleanResult clean(const std::vector<ScanItem>& items, const Progress& progress = {});

// Deletes for good the given locations, each only when it lies inside a trash folder
// (Trash::isInsideTrash), with its info file. Blocking.
PurgeResult purge(const std::vector<std::string>& paths);

// The administrator batch over the work list, done by veltro-helper as root; adds to
// `result` in place.
void runPrivileged(const std::vector<PrivilegedWork>& work, CleanResult& result);

// The safety check shared by the pass and the batch: protected, or fewer than 4
// components once standardized.
bool isRefusedPath(const std::string& path);

} // namespace Cleaner
