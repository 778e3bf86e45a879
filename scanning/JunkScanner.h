#pragma once
// Turns the rule table into measured items: a collection phase that walks every rule
// in table order and gives each path to exactly one category, then a measurement
// phase in display order with at most 8 concurrent measurements. Every failure is
// local and silent; nothing throws.

#include "catalogue/ScanItem.h"
#include "scanning/Candidate.h"
#include "scanning/Claims.h"
#include "scanning/LargeFile.h"
#include "scanning/ScanEvent.h"
#include "scanning/ScanOptions.h"

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace JunkScanner {

// Runs a whole scan on the calling thread (measurements on up to 8 worker
// threads) and returns every item: categories in display order, command items
// first. A stop requested during collection returns an empty list; between
// categories, the finished categories.
std::vector<ScanItem> scan(const ScanOptions& options, const ScanEventSink& events,
                           std::stop_token stop = {});

// The same scan for a receiver that keeps what it is told: each event is handed over
// (a category's items moved, not copied) and nothing comes back, so a scan of many
// items holds them once instead of twice.
void scanHandingOver(const ScanOptions& options, const std::function<void(ScanEvent&&)>& events,
                     std::stop_token stop = {});

// The large-file search: regular files of at least the threshold under the home
// folder and the extra roots, outside the skip set, packages and other volumes,
// and not covered by `claims`. Polls `stop` every 5,000 entries.
std::vector<LargeFile> largeFiles(const ScanOptions& options, const Claims& claims,
                                  std::stop_token stop = {});

// The warning note for a large file's path, if any.
std::optional<std::string> warning(std::string_view path);

// Date lookups, none when unreadable. Linux has no added-to-folder date, so
// addedDate falls back to the modification date.
std::optional<Date> modDate(const std::string& path);
std::optional<Date> addedDate(const std::string& path);

} // namespace JunkScanner
