#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

// The canonical paths already given to some category during one scan.
class Claims {
public:
    // True when `path` or any of its ancestors is claimed.
    bool isCovered(std::string_view path) const;

    // True when some claimed path starts with `path` + "/" ("/" not doubled).
    bool hasClaimedDescendant(std::string_view path) const;

    void insert(std::string path);

    const std::unordered_set<std::string>& set() const { return set_; }

private:
    std::unordered_set<std::string> set_;
};
