#include "catalogue/ProtectedPaths.h"

#include "catalogue/CleanupRules.h"
#include "catalogue/LinuxLocations.h"
#include "platform/Environment.h"

#include <climits>
#include <cstdlib>
#include <set>
#include <string>

namespace ProtectedPaths {

namespace {

std::set<std::string, std::less<>> buildAll() {
    std::set<std::string, std::less<>> all(CleanupRules::protectedPaths().begin(),
                                           CleanupRules::protectedPaths().end());
    all.insert(LinuxLocations::protectedPaths().begin(), LinuxLocations::protectedPaths().end());

    // Found paths are compared in their canonical form, with links in the parent chain
    // resolved: a home reached through a link must be protected under both spellings.
    const std::string& home = Environment::homeFolder();
    char* resolved = ::realpath(home.c_str(), nullptr);
    if (!resolved)
        return all;
    const std::string real(resolved);
    std::free(resolved);
    if (real == home)
        return all;
    std::set<std::string, std::less<>> underResolvedHome{real};
    const std::string prefix = home + "/";
    for (const std::string& path : all)
        if (path.starts_with(prefix))
            underResolvedHome.insert(real + path.substr(home.size()));
    all.merge(underResolvedHome);
    return all;
}

} // namespace

bool contains(std::string_view path) {
    static const std::set<std::string, std::less<>> all = buildAll();
    return all.find(path) != all.end();
}

} // namespace ProtectedPaths
