#include "scanning/SearchedPlaces.h"

#include "catalogue/CleanupRules.h"
#include "catalogue/LinuxLocations.h"
#include "platform/Environment.h"
#include "platform/Paths.h"
#include "scanning/PathGlob.h"

#include <algorithm>
#include <sys/stat.h>
#include <unordered_set>

namespace SearchedPlaces {

namespace {

// A listed folder must be a folder itself, as the scanner lists none through a link;
// the folder an item pattern's last component is looked up in may be reached through one.
bool isFolder(const std::string& path, bool followLink) {
    struct stat st {};
    return (followLink ? ::stat(path.c_str(), &st) : ::lstat(path.c_str(), &st)) == 0 && S_ISDIR(st.st_mode);
}

class Places {
public:
    explicit Places(std::vector<std::string>& folders) : folders_(folders) {}

    void add(std::string folder) {
        if (seen_.insert(folder).second)
            folders_.push_back(std::move(folder));
    }

private:
    std::vector<std::string>& folders_;
    std::unordered_set<std::string> seen_;
};

} // namespace

PerCategory of(const ScanOptions& options) {
    PerCategory result;
    for (const Rule& rule : CleanupRules::rules()) {
        std::vector<std::string>& folders = result[rule.category.id];
        if (rule.needsFullDiskAccess && !options.hasFullDiskAccess)
            continue;
        Places places(folders);
        for (const Source& source : LinuxLocations::sourcesOf(rule)) {
            if (const auto* children = std::get_if<Source::Children>(&source.value)) {
                for (std::string& folder : PathGlob::expand(children->pattern))
                    if (isFolder(folder, false))
                        places.add(std::move(folder));
            } else if (const auto* items = std::get_if<Source::Items>(&source.value)) {
                for (std::string& folder : PathGlob::expand(Paths::parentFolder(items->pattern)))
                    if (isFolder(folder, true))
                        places.add(std::move(folder));
            } else if (std::holds_alternative<Source::LargeFiles>(source.value)) {
                std::vector<std::string> roots{Environment::homeFolder()};
                for (const std::string& root : options.extraRoots)
                    roots.push_back(Paths::standardizedPath(root));
                std::sort(roots.begin(), roots.end());
                for (std::string& root : roots)
                    if (isFolder(root, true))
                        places.add(std::move(root));
            }
        }
    }
    return result;
}

} // namespace SearchedPlaces
