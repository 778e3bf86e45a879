#include "platform/Date.h"

#include <cstdio>
#include <ctime>

namespace Dates {

Date distantPast() { return Date::min(); }

Date now() { return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now()); }

std::string iso8601(Date date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
    const std::time_t t = static_cast<std::time_t>(seconds);
    std::tm utc{};
    ::gmtime_r(&t, &utc);
    char buffer[96];
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02dT%02d:%02d:%02dZ", utc.tm_year + 1900, utc.tm_mon + 1,
                  utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return buffer;
}

} // namespace Dates
