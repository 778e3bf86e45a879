#pragma once
// The administrator batch script and the reading of its answers, as pure functions.

#include "removal/Cleaner.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace AdminBatchScript {

// H + "/.Trash/Veltro-" + yyyyMMdd-HHmmss of the given local time.
std::string destination(const std::string& home, Date localNow);

// The whole script, line by line, for DEST, the work list and the owner ids. The
// k-th pair answers under the key "i<k>"; pairs for which writesLine is false get
// no line but keep their index. Item lines carry the standardized path, the one the
// safety check judged.
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
