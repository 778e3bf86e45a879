#pragma once
// Turning candidates into measured items, several at a time. The workers belong to
// one call: they start with it and are joined before it returns.

#include "catalogue/ScanItem.h"
#include "scanning/Candidate.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

namespace Measurement {

// Most measurements in flight at once.
inline constexpr size_t maxConcurrent = 8;

// The note of a folder kept although its size could not be read.
inline constexpr const char* unreadableNote = "Size unreadable (needs administrator access)";

// The item a candidate becomes: measured when it has at least one allocated byte;
// without a size (and with the unreadable note) when it is an `adminTrash` folder
// the user may not read; otherwise none.
std::optional<ScanItem> measureCandidate(const Candidate& candidate, std::stop_token stop);

// Called with (done, total) after every 10th completed measurement (every
// thousandth of the total, when that is more) and after the last one; never
// concurrently with itself.
using Progress = std::function<void(size_t done, size_t total)>;

// Measures the candidates with at most `maxConcurrent` in flight and returns the
// items in the order their measurements completed. Once `stop` is requested no new
// measurement starts; those already running finish (their walks poll `stop`) and
// their items are kept.
std::vector<ScanItem> measure(const std::vector<Candidate>& candidates, const Progress& progress,
                              std::stop_token stop);

} // namespace Measurement
