#pragma once

#include <optional>
#include <set>
#include <string>
#include <variant>

// Where a rule looks.
struct Source {
    // Which date an age filter compares: content modification, or added to folder.
    enum class DateKey { modified, added };

    // Every immediate child of each folder the pattern names is a candidate, except
    // the names in `exclude` and ".DS_Store"/".localized"; with `olderThanDays`, a
    // child newer than the cut-off is left out (a child without a date stays).
    struct Children {
        std::string pattern;
        std::optional<int> olderThanDays;
        DateKey dateKey = DateKey::modified;
        std::set<std::string> exclude;
        bool operator==(const Children&) const = default;
    };

    // Every existing path the pattern expands to is itself a candidate.
    struct Items {
        std::string pattern;
        bool operator==(const Items&) const = default;
    };

    // A tool's own clean-up command offered as an item. `requires_` names an
    // executable that must be found (`requires` is a C++ keyword); `probe` is shell
    // text whose trimmed output decides whether the item is offered and fills
    // "{value}" in `note`.
    struct Command {
        std::string id;
        std::string title;
        std::string shell;
        bool admin = false;
        std::optional<std::string> requires_;
        std::optional<std::string> probe;
        std::optional<std::string> note;
        bool operator==(const Command&) const = default;
    };

    // Filled by the large-file search.
    struct LargeFiles {
        bool operator==(const LargeFiles&) const = default;
    };

    std::variant<Children, Items, Command, LargeFiles> value;

    static Source children(std::string pattern, std::optional<int> olderThanDays = std::nullopt,
                           DateKey dateKey = DateKey::modified, std::set<std::string> exclude = {}) {
        return {Children{std::move(pattern), olderThanDays, dateKey, std::move(exclude)}};
    }
    static Source items(std::string pattern) { return {Items{std::move(pattern)}}; }
    static Source command(Command command) { return {std::move(command)}; }
    static Source largeFiles() { return {LargeFiles{}}; }

    bool operator==(const Source&) const = default;
};
