#include "platform/ByteCount.h"

#include "platform/Localized.h"

#include <array>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace {

struct Unit {
    std::string_view name;
    int fractionDigits;
};

constexpr std::array<Unit, 6> units{{{"bytes", 0}, {"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}}};

std::string fixed(double value, int digits) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", digits, value);
    std::string text(buffer);
    if (digits == 0)
        return text;
    const char* point = std::localeconv()->decimal_point;
    const std::string_view separator = point && *point ? point : ".";
    const size_t at = text.rfind(separator);
    if (at == std::string::npos)
        return text;
    while (text.size() > at + separator.size() && text.back() == '0')
        text.pop_back();
    if (text.size() == at + separator.size())
        text.erase(at);
    return text;
}

} // namespace

std::string formatFileSize(int64_t bytes) {
    if (bytes == 1)
        return localized("1 byte");
    const bool negative = bytes < 0;
    const double magnitude = std::fabs(static_cast<double>(bytes));
    const std::string sign = negative ? "-" : "";
    if (magnitude < 1000)
        return localizedFormat("%1 bytes", {sign + fixed(magnitude, 0)});

    double scaled = magnitude;
    for (size_t i = 1; i < units.size(); ++i) {
        scaled /= 1000.0;
        const Unit& unit = units[i];
        const double factor = std::pow(10.0, unit.fractionDigits);
        const double rounded = std::round(scaled * factor) / factor;
        if (rounded < 1000.0 || i + 1 == units.size())
            return localizedFormat("%1 %2", {sign + fixed(scaled, unit.fractionDigits), localized(unit.name)});
    }
    return {};
}

std::string formatByteCount(int64_t bytes) {
    if (bytes < 1)
        return localized("0 KB");
    return formatFileSize(bytes);
}
