#pragma once

#include "catalogue/RemovalMethod.h"
#include "platform/Date.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

// One found item. `id` is the identity (the canonical path, raw bytes, for a path
// item; the command id for a command item); equality covers every field.
struct ScanItem {
    std::string id;
    std::string categoryID;
    std::string name;
    std::optional<std::string> url; // the file-system path; absent for command items
    std::optional<int64_t> size;    // allocated bytes; absent when unknown
    std::optional<Date> modified;
    RemovalMethod method;
    std::optional<std::string> note;

    bool operator==(const ScanItem&) const = default;

    // The command text for a command item; otherwise the parent folder of `url` with
    // the home folder shown as "~"; with neither, "".
    std::string location() const;

    // `size`, or -1 when unknown, so unknown sizes sort below every real size.
    int64_t sortSize() const { return size.value_or(-1); }

    // `modified`, or the distant past when unknown.
    Date sortDate() const;
};

template <> struct std::hash<ScanItem> {
    size_t operator()(const ScanItem& item) const noexcept;
};
