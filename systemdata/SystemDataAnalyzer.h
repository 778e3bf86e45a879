#pragma once
// Measures the System Data areas with administrator rights (one password prompt, the
// helper measuring entry by entry) and performs their actions. Blocking calls; run
// them off the interface thread.

#include "removal/WorkList.h"
#include "systemdata/SystemDataEntry.h"
#include "systemdata/SystemDataReport.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace SystemDataAnalyzer {

// Called once per id as results arrive (bytes; for "tm" the snapshot count), on the
// analysing thread: the receiver moves it to its own thread.
using EntryCallback = std::function<void(const std::string& id, int64_t value)>;

struct Analysis {
    std::optional<SystemDataReport> report;
    std::optional<std::string> message; // exactly one of the two is present
};

// Measures the catalogue's entries. Blocks until the privileged run has ended.
Analysis analyze(const EntryCallback& onEntry);

// The same for any list of entries (a subset, or folders of one's own).
Analysis analyze(const std::vector<SystemDataEntry>& entries, const EntryCallback& onEntry);

// Runs the action; no message on success.
std::optional<std::string> perform(const SystemDataEntry::Action& action);

// "id|number" lines in order; malformed lines ignored.
std::vector<std::pair<std::string, int64_t>> parse(std::string_view text);

// What the helper measures for the entries: each entry's folders, or the shell text
// whose output is its value (the snapshot count; a du that leaves out the folders other
// entries show).
std::vector<WorkList::MeasuredEntry> measuredEntries(const std::vector<SystemDataEntry>& entries);

// The same measurement written as one shell script that also appends each line to
// `progressPath`: the documented form of the helper's work, one line per measured entry.
std::string measurementScript(const std::vector<SystemDataEntry>& entries, const std::string& progressPath);

} // namespace SystemDataAnalyzer
