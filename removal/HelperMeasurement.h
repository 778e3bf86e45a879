#pragma once
// veltro-helper's measure mode: one "id|value" line per entry, written (and so
// delivered to the user process) as soon as that entry is measured, exactly as the
// measurement script prints them.

#include "removal/WorkList.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace HelperMeasurement {

// Measures in order until done or stopped; lines go to `outFd`. For an entry with
// folders: `du -skx -- folders...` (no shell), its first fields summed in KiB; a
// folder that is missing or unreadable adds nothing. For a count entry: the trimmed
// output of its shell command.
void run(const std::vector<WorkList::MeasuredEntry>& entries, int outFd);

// awk '{s+=$1} END {print s+0}': the leading number of each line's first field, summed.
int64_t sumOfFirstFields(std::string_view text);

} // namespace HelperMeasurement
