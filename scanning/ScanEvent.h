#pragma once

#include "catalogue/ScanItem.h"

#include <functional>
#include <string>
#include <variant>
#include <vector>

// What the scanner reports while it runs.
struct ScanEvent {
    struct Status {
        std::string text;
        bool operator==(const Status&) const = default;
    };
    struct CategoryStarted {
        std::string id;
        int step = 0; // counts from 1
        int of = 0;
        bool operator==(const CategoryStarted&) const = default;
    };
    struct CategoryFinished {
        std::string id;
        std::vector<ScanItem> items; // the category's complete final list
        bool operator==(const CategoryFinished&) const = default;
    };
    struct Progress {
        double value = 0; // 0.0 … 1.0
        bool operator==(const Progress&) const = default;
    };

    std::variant<Status, CategoryStarted, CategoryFinished, Progress> value;

    bool operator==(const ScanEvent&) const = default;
};

// Called from scanner threads, never concurrently with itself for one scan.
using ScanEventSink = std::function<void(const ScanEvent&)>;
