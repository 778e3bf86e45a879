#include "systemdata/SystemDataEntry.h"

#include "platform/Environment.h"

std::vector<std::string> SystemDataEntry::expandedPaths() const {
    std::vector<std::string> out;
    out.reserve(paths.size());
    for (const std::string& path : paths) {
        if (path == "~" || path.starts_with("~/"))
            out.push_back(Environment::homeFolder() + path.substr(1));
        else
            out.push_back(path);
    }
    return out;
}
