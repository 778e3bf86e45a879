#include "scanning/Claims.h"

#include "platform/Paths.h"

bool Claims::isCovered(std::string_view path) const {
    std::string current(path);
    while (true) {
        if (contains(current))
            return true;
        std::string parent = Paths::parentFolder(current);
        if (parent.empty() || parent == current)
            return false;
        current = std::move(parent);
    }
}

bool Claims::hasClaimedDescendant(std::string_view path) const {
    std::string prefix(path);
    if (prefix.empty() || prefix.back() != '/')
        prefix.push_back('/');
    const auto first = set_.lower_bound(prefix);
    return first != set_.end() && first->starts_with(prefix);
}

void Claims::insert(std::string path) {
    set_.insert(std::move(path));
}
