#pragma once

#include <set>
#include <string>
#include <string_view>

// The canonical paths already given to some category during one scan. Kept sorted,
// so that everything below a folder is one contiguous run starting at "folder/":
// both questions cost a logarithmic search, however many items a scan finds.
class Claims {
public:
    // True when `path` or any of its ancestors is claimed.
    bool isCovered(std::string_view path) const;

    // True when some claimed path starts with `path` + "/" ("/" not doubled).
    bool hasClaimedDescendant(std::string_view path) const;

    // True when `path` itself is claimed.
    bool contains(std::string_view path) const { return set_.find(path) != set_.end(); }

    void insert(std::string path);

private:
    std::set<std::string, std::less<>> set_;
};
