#pragma once

#include <chrono>
#include <string>

// A point in time with the precision file systems report.
using Date = std::chrono::time_point<std::chrono::system_clock, std::chrono::nanoseconds>;

namespace Dates {

// The earliest representable date: what an absent date sorts as.
Date distantPast();

Date now();

// "YYYY-MM-DDThh:mm:ssZ" in UTC, seconds truncated.
std::string iso8601(Date date);

} // namespace Dates
