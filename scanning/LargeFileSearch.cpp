// The large-file search: the roots, the skip set, and the notes; the walk itself
// is LargeFileWalk.

#include "scanning/JunkScanner.h"

#include "platform/Environment.h"
#include "platform/Localized.h"
#include "platform/XdgFolders.h"
#include "scanning/LargeFileWalk.h"

#include <algorithm>
#include <unordered_set>

namespace JunkScanner {

namespace {

char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::vector<std::string> skipSet(bool hasFullDiskAccess) {
    const std::string& home = Environment::homeFolder();
    std::vector<std::string> skip{home + "/.Trash",
                                  XdgFolders::dataHome() + "/Trash",
                                  home + "/Library/Caches",
                                  home + "/Library/Metadata",
                                  home + "/Library/Biome",
                                  home + "/Library/Trial",
                                  home + "/Library/Daemon Containers",
                                  "/System",
                                  "/private",
                                  "/dev",
                                  "/Volumes/Recovery",
                                  "/.Spotlight-V100",
                                  "/System/Volumes/Data/.Spotlight-V100"};
    if (!hasFullDiskAccess) {
        for (const char* folder : {"/Library/Containers", "/Library/Group Containers", "/Library/Mail",
                                   "/Library/Messages", "/Library/Safari"})
            skip.push_back(home + folder);
    }
    return skip;
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

} // namespace

std::vector<LargeFile> largeFiles(const ScanOptions& options, const Claims& claims, std::stop_token stop) {
    std::vector<std::string> roots;
    for (const std::string& root : options.extraRoots)
        if (!root.empty())
            roots.push_back(withoutTrailingSlashes(root));
    roots.push_back(Environment::homeFolder());
    std::sort(roots.begin(), roots.end());
    roots.erase(std::unique(roots.begin(), roots.end()), roots.end());

    const std::vector<std::string> skip = skipSet(options.hasFullDiskAccess);
    LargeFileWalk walk(options.largeFileThreshold, claims, std::move(stop));
    for (const std::string& root : roots)
        walk.addRoot(root, skip);

    // Overlapping roots meet some files twice; the first meeting counts.
    std::vector<LargeFile> hits;
    std::unordered_set<std::string> reported;
    for (LargeFile& hit : walk.run()) {
        if (!reported.insert(hit.path).second)
            continue;
        hit.note = warning(hit.path);
        hits.push_back(std::move(hit));
    }
    return hits;
}

std::optional<std::string> warning(std::string_view path) {
    std::string lower(path);
    std::transform(lower.begin(), lower.end(), lower.begin(), asciiLower);
    const auto contains = [&lower](std::string_view part) { return lower.find(part) != std::string::npos; };
    const auto endsWith = [&lower](std::string_view part) { return lower.ends_with(part); };
    if (endsWith("docker.raw") || contains("orbstack") || endsWith(".vmdk") || endsWith(".qcow2") ||
        endsWith(".vdi") || contains("utm") || contains("parallels"))
        return localized("\u26A0\uFE0F VM/Docker disk \u2014 deleting it destroys everything inside the VM");
    if (contains("/mobile documents/"))
        return localized("\u2601\uFE0F In iCloud Drive \u2014 deleting removes it from all your devices");
    if (contains(".photoslibrary"))
        return localized("\u26A0\uFE0F Inside a Photos library");
    return std::nullopt;
}

} // namespace JunkScanner
