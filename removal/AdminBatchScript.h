#pragma once
// The administrator batch script and the reading of its answers, as pure functions.
// The script is the documented form of the helper's work list: both are made from the
// same steps, so they name the same keys, kinds and paths in the same order.

#include "removal/Cleaner.h"
#include "removal/WorkList.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace AdminBatchScript {

// H + "/.Trash/Veltro-" + yyyyMMdd-HHmmss of the given local time.
std::string destination(const std::string& home, Date localNow);

// The steps of the work list: the k-th pair answers under the key "i<k>"; pairs for
// which writesLine is false get no step but keep their index. Paths are the items'
// paths as recorded.
std::vector<WorkList::Step> steps(const std::vector<Cleaner::PrivilegedWork>& work);

// A step's line of the script: mv_item, rm_item or run_cmd, the quoted path or
// command, and the key.
std::string itemLine(const WorkList::Step& step);

// The whole script, line by line, for DEST, the work list and the owner ids.
std::string build(const std::string& dest, const std::vector<Cleaner::PrivilegedWork>& work, unsigned uid,
                  unsigned gid);

// Whether `pair` gets a line: commands always; other items only with a path that
// Cleaner::isRefusedPath lets through.
bool writesLine(const Cleaner::PrivilegedWork& pair);

// "i" followed by the index in decimal.
std::string entryKey(size_t index);

// Entry key -> success, from the script's standard output: split at every kind of
// newline, empty lines dropped, each line split at its first "|"; a later line with
// the same key wins.
std::map<std::string, bool> parseAnswers(std::string_view output);

} // namespace AdminBatchScript
