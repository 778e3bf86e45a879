#include "catalogue/LinuxLocations.h"

#include "catalogue/CacheFolderNames.h"
#include "catalogue/CleanupRules.h"
#include "platform/Environment.h"
#include "platform/Paths.h"
#include "platform/XdgFolders.h"

#include <algorithm>
#include <unordered_map>

// The Linux table. Sources are appended after the rule's own, and claims go to the
// first rule in table order, so a specific place added to an early rule (a browser's
// cache under ~/.cache) is taken before dev.stores' "children of ~/.cache" sees it.

namespace LinuxLocations {

namespace {

using Table = std::unordered_map<std::string, std::vector<Source>>;

// A folder written as a pattern that names exactly it. The expansion matches a
// component holding "*", "?" or "[" with fnmatch, so such a component of an XDG
// folder gets its special characters escaped; other components are taken literally.
std::string literalPattern(std::string_view folder) {
    std::string pattern;
    size_t start = 0;
    while (start <= folder.size()) {
        const size_t end = std::min(folder.find('/', start), folder.size());
        const std::string_view component = folder.substr(start, end - start);
        const bool hasWildcards = component.find_first_of("*?[") != std::string_view::npos;
        for (char c : component) {
            if (hasWildcards && (c == '*' || c == '?' || c == '[' || c == '\\'))
                pattern.push_back('\\');
            pattern.push_back(c);
        }
        if (end < folder.size())
            pattern.push_back('/');
        start = end + 1;
    }
    return pattern;
}

void addItems(std::vector<Source>& sources, const std::string& base,
              std::initializer_list<std::string_view> names) {
    for (std::string_view name : names)
        sources.push_back(Source::items(base + std::string(name)));
}

void addChildren(std::vector<Source>& sources, std::initializer_list<std::string> patterns) {
    for (const std::string& pattern : patterns)
        sources.push_back(Source::children(pattern));
}

std::vector<Source> browsers(const std::string& cache, const std::string& config) {
    std::vector<Source> sources;
    addItems(sources, cache + "/",
             {"google-chrome", "google-chrome-beta", "chromium", "microsoft-edge", "BraveSoftware", "vivaldi",
              "opera", "mozilla/firefox/*/cache2", "mozilla/firefox/*/startupCache"});
    addItems(sources, "~/",
             {"snap/firefox/common/.cache/mozilla/firefox/*/cache2",
              ".var/app/org.mozilla.firefox/cache/mozilla/firefox/*/cache2"});
    for (std::string_view base : {"google-chrome/*", "google-chrome-beta/*", "chromium/*", "microsoft-edge/*",
                                  "BraveSoftware/Brave-Browser/*", "vivaldi/*", "opera"})
        for (std::string_view name : CacheFolderNames::chromium)
            sources.push_back(Source::items(config + "/" + std::string(base) + "/" + std::string(name)));
    for (std::string_view folder : {"google-chrome", "microsoft-edge", "BraveSoftware/Brave-Browser"})
        for (std::string_view name : CacheFolderNames::browserShared)
            sources.push_back(Source::items(config + "/" + std::string(folder) + "/" + std::string(name)));
    return sources;
}

std::vector<Source> electronApps(const std::string& cache, const std::string& config) {
    std::vector<Source> sources;
    for (std::string_view name : CacheFolderNames::chromium)
        sources.push_back(Source::items(config + "/*/" + std::string(name)));
    for (std::string_view name : CacheFolderNames::electronOnly)
        sources.push_back(Source::items(config + "/*/" + std::string(name)));
    sources.push_back(Source::items(cache + "/spotify"));
    return sources;
}

Table buildAdditions() {
    const std::string cache = literalPattern(XdgFolders::cacheHome());
    const std::string config = literalPattern(XdgFolders::configHome());
    const std::string data = literalPattern(XdgFolders::dataHome());
    const std::string trashOfUser = "/.Trash-" + std::to_string(Environment::realUserID()) + "/files";
    Table table;

    table["apps.browsers"] = browsers(cache, config);
    table["apps.electron"] = electronApps(cache, config);
    addChildren(table["apps.sandbox"], {"~/.var/app/*/cache", "~/snap/*/common/.cache"});
    addChildren(table["apps.media"], {"~/Videos/CacheClip", "~/Videos/*/CacheClip"});

    std::vector<Source>& packages = table["dev.packages"];
    addItems(packages, cache + "/", {"pip", "pypoetry", "uv", "yarn", "pnpm"});
    addItems(packages, data + "/", {"pnpm/store"});
    addItems(packages, cache + "/",
             {"go-build", "electron", "electron-builder", "node-gyp", "ms-playwright", "JetBrains",
              "Homebrew", "deno", "composer", "ccache", "sccache", "bazel"});

    addChildren(table["user.trash"], {data + "/Trash/files", "/media/*/*" + trashOfUser,
                                      "/run/media/*/*" + trashOfUser, "/mnt/*" + trashOfUser});

    // $TMPDIR, when set, is the user's own temporary folder: the shared ones are
    // searched only in its absence.
    if (!Environment::temporaryFolderIsSet())
        for (const char* folder : {"/tmp", "/var/tmp"})
            table["user.temp"].push_back(Source::children(folder, 3, Source::DateKey::modified));

    addItems(table["user.logs"], "", {"~/.xsession-errors.old", data + "/xorg/*.old"});

    if (const auto& downloads = XdgFolders::downloadFolder();
        downloads && *downloads != Environment::homeFolder() + "/Downloads")
        table["user.downloads"].push_back(
            Source::children(literalPattern(*downloads), 90, Source::DateKey::added));

    addItems(table["system.caches"], "/var/cache/",
             {"apt/pkgcache.bin", "apt/srcpkgcache.bin", "man", "fontconfig", "PackageKit", "dnf", "yum",
              "zypp/packages"});
    std::vector<Source>& systemLogs = table["system.logs"];
    addItems(systemLogs, "/var/log/", {"*.gz", "*.[0-9]", "*.old", "*/*.gz", "*/*.[0-9]", "*/*.old"});
    addChildren(systemLogs, {"/var/crash", "/var/lib/systemd/coredump"});
    addItems(table["system.updates"], "/var/cache/",
             {"apt/archives/*.deb", "pacman/pkg/*.pkg.tar*", "dnf/*/packages/*.rpm"});
    return table;
}

const Table& additionsTable() {
    static const Table table = buildAdditions();
    return table;
}

Table buildSources() {
    Table table;
    for (const Rule& rule : CleanupRules::rules()) {
        std::vector<Source> sources = rule.sources;
        if (rule.category.id == "dev.stores") {
            for (Source& source : sources)
                if (auto* children = std::get_if<Source::Children>(&source.value);
                    children && children->pattern == "~/.cache")
                    children->exclude.insert(ownCacheNames.begin(), ownCacheNames.end());
        }
        for (const Source& addition : additions(rule.category.id))
            if (std::find(rule.sources.begin(), rule.sources.end(), addition) == rule.sources.end())
                sources.push_back(addition);
        table.emplace(rule.category.id, std::move(sources));
    }
    return table;
}

} // namespace

const std::vector<Source>& additions(std::string_view ruleID) {
    static const std::vector<Source> none;
    const Table& table = additionsTable();
    const auto found = table.find(std::string(ruleID));
    return found == table.end() ? none : found->second;
}

const std::vector<Source>& sourcesOf(const Rule& rule) {
    static const Table table = buildSources();
    const auto found = table.find(rule.category.id);
    return found == table.end() ? rule.sources : found->second;
}

bool offersOnlyOwnEntries(const Rule& rule) {
    return rule.category.id == "user.temp";
}

const std::set<std::string>& protectedPaths() {
    static const std::set<std::string> paths = [] {
        std::set<std::string> all{"/etc", "/var",   "/var/cache", "/var/log",  "/var/lib", "/var/tmp",
                                  "/tmp", "/home",  "/root",      "/opt",      "/boot",    "/srv",
                                  "/run", "/media", "/mnt",       "/proc",     "/sys",     "/dev",
                                  "/lib", "/lib64", "/snap",      "/usr/local"};
        const std::string& home = Environment::homeFolder();
        for (std::string_view folder : protectedHomeFolders)
            all.insert(Paths::standardizedPath(Paths::join(home, folder)));
        return all;
    }();
    return paths;
}

} // namespace LinuxLocations
