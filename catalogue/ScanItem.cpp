#include "catalogue/ScanItem.h"

#include "platform/Paths.h"

std::string ScanItem::location() const {
    if (method.isCommand())
        return method.command;
    if (url)
        return Paths::abbreviatingHome(Paths::parentFolder(*url));
    return {};
}

Date ScanItem::sortDate() const { return modified.value_or(Dates::distantPast()); }

size_t std::hash<ScanItem>::operator()(const ScanItem& item) const noexcept {
    size_t seed = 0;
    auto mix = [&seed](size_t value) { seed ^= value + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2); };
    std::hash<std::string> text;
    mix(text(item.id));
    mix(text(item.categoryID));
    mix(text(item.name));
    mix(item.url ? text(*item.url) : 0);
    mix(item.size ? std::hash<int64_t>{}(*item.size) : 1);
    mix(item.modified ? std::hash<int64_t>{}(item.modified->time_since_epoch().count()) : 2);
    mix(static_cast<size_t>(item.method.kind));
    mix(text(item.method.command));
    mix(item.method.admin ? 3 : 4);
    mix(item.note ? text(*item.note) : 5);
    return seed;
}
