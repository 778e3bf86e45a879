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

// The whole script, line by line, for DEST, the work list and the owner ids. Pairs
// refused by the safety check (or without a path) get no line; `writtenKeys`
// receives the entry keys that were written.
std::string build(const std::string& dest, const std::vector<Cleaner::PrivilegedWork>& work, unsigned uid,
                  unsigned gid);

// Entry key -> success, from the script's standard output: split at every kind of
// newline, empty lines dropped, each line split at its first "|"; a later line with
// the same key wins.
std::map<std::string, bool> parseAnswers(std::string_view output);

} // namespace AdminBatchScript
