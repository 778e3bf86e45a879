#include "catalogue/CleanupRules.h"

#include "catalogue/CacheFolderNames.h"
#include "platform/Environment.h"
#include "platform/Localized.h"
#include "platform/Paths.h"

#include <array>
#include <string_view>
#include <utility>

// The rule table. Order matters: the scanner gives a path to the first rule that
// reaches it, so the specific rules (browser, package-manager caches) stand before
// the general ones (all user caches, all logs) that would otherwise swallow them.
// Patterns starting with "~" are expanded at scan time; the macOS locations are kept
// as they are even where Linux has no such folder — they simply find nothing.

namespace CleanupRules {

namespace {

CleanCategory category(std::string id, CategoryGroup group, std::string_view title, std::string_view detail,
                       std::string symbol, Risk risk, bool selectedByDefault) {
    return CleanCategory{std::move(id),     group, localized(title), localized(detail),
                         std::move(symbol), risk,  selectedByDefault};
}

Rule rule(CleanCategory cleanCategory, std::vector<Source> sources, bool permanent = false,
          bool needsFullDiskAccess = false) {
    return Rule{std::move(cleanCategory), std::move(sources), permanent, needsFullDiskAccess};
}

std::vector<Source> childrenOf(std::initializer_list<std::string_view> patterns) {
    std::vector<Source> sources;
    for (std::string_view pattern : patterns)
        sources.push_back(Source::children(std::string(pattern)));
    return sources;
}

void appendItems(std::vector<Source>& sources, std::initializer_list<std::string_view> patterns) {
    for (std::string_view pattern : patterns)
        sources.push_back(Source::items(std::string(pattern)));
}

std::vector<Rule> buildRules() {
    using G = CategoryGroup;
    std::vector<Rule> table;
    table.reserve(22);

    table.push_back(
        rule(category("apps.browsers", G::apps, "Browser Caches",
                      "Safari, Chrome, Edge, Brave, Arc, Firefox, Opera, Vivaldi \u2014 web, code and GPU "
                      "caches. Bookmarks, passwords and history are not touched. Quit browsers before "
                      "cleaning.",
                      "safari", Risk::safe, true),
             browserSources()));

    table.push_back(
        rule(category("apps.electron", G::apps, "App Caches (Slack, Discord, VS Code \u2026)",
                      "Caches of Electron/Chromium apps such as Slack, Discord, Teams, VS Code, Cursor, "
                      "Notion, Figma and Spotify. Safe to remove \u2014 apps rebuild them.",
                      "app.badge", Risk::safe, true),
             electronSources()));

    table.push_back(
        rule(category("apps.sandbox", G::apps, "Sandboxed App Caches (App Store)",
                      "~/Library/Containers/*/Data/Library/Caches \u2014 caches of App Store and Apple "
                      "apps (requires Full Disk Access).",
                      "shippingbox", Risk::safe, true),
             sandboxSources(), false, true));

    table.push_back(
        rule(category("apps.media", G::apps, "Video Editing Caches (Adobe / DaVinci)",
                      "Adobe Media Cache, Peak Files and DaVinci Resolve CacheClip \u2014 rebuilt when a "
                      "project is opened (slower the first time).",
                      "film.stack", Risk::caution, false),
             childrenOf({"~/Library/Application Support/Adobe/Common/Media Cache Files",
                         "~/Library/Application Support/Adobe/Common/Media Cache",
                         "~/Library/Application Support/Adobe/Common/Peak Files", "~/Movies/CacheClip",
                         "~/Movies/*/CacheClip"})));

    table.push_back(rule(
        category("dev.derived", G::developer, "Xcode DerivedData",
                 "Xcode's intermediate build files \u2014 always safe to remove; the next build will "
                 "be slower.",
                 "hammer.circle", Risk::safe, true),
        childrenOf({"~/Library/Developer/Xcode/DerivedData", "~/Library/Developer/Xcode/UserData/Previews",
                    "~/Library/Developer/Xcode/Products"})));

    {
        std::vector<Source> sources =
            childrenOf({"~/Library/Developer/Xcode/*DeviceSupport",
                        "~/Library/Developer/CoreSimulator/Caches", "~/Library/Logs/CoreSimulator"});
        sources.push_back(Source::command(
            {"cmd.simctl", "Delete unavailable Simulators", "xcrun simctl delete unavailable", false, "xcrun",
             "xcrun simctl list devices unavailable 2>/dev/null | grep -c '(unavailable'", "{value} found"}));
        table.push_back(
            rule(category("dev.devicesupport", G::developer, "Device Support & Simulators",
                          "iOS/watchOS/tvOS/visionOS DeviceSupport (re-downloaded when a device is "
                          "connected), Simulator caches and unavailable Simulators.",
                          "iphone.gen3", Risk::safe, true),
                 std::move(sources)));
    }

    table.push_back(
        rule(category("dev.archives", G::developer, "Xcode Archives",
                      "Your .xcarchive files \u2014 they contain the dSYMs needed to symbolicate crash "
                      "logs of shipped versions. Choose manually.",
                      "archivebox", Risk::review, false),
             childrenOf({"~/Library/Developer/Xcode/Archives"})));

    {
        std::vector<Source> sources;
        appendItems(sources,
                    {"~/.npm/_cacache", "~/.npm/_logs", "~/Library/Caches/Yarn", "~/.yarn/berry/cache",
                     "~/Library/pnpm/store", "~/.pnpm-store", "~/.bun/install/cache", "~/Library/Caches/pip",
                     "~/Library/Caches/pypoetry", "~/Library/Caches/Homebrew", "~/Library/Caches/CocoaPods",
                     "~/Library/Caches/org.swift.swiftpm", "~/Library/Caches/go-build", "~/.gradle/caches",
                     "~/Library/Caches/electron", "~/Library/Caches/electron-builder",
                     "~/Library/Caches/node-gyp", "~/Library/Caches/ms-playwright",
                     "~/Library/Caches/JetBrains"});
        sources.push_back(
            Source::command({"cmd.brew", "brew cleanup (remove old Homebrew package versions)",
                             "brew cleanup -s --prune=all", false, "brew", std::nullopt, std::nullopt}));
        sources.push_back(Source::command({"cmd.docker", "Docker/OrbStack build cache (docker builder prune)",
                                           "docker builder prune -af", false, "docker",
                                           "docker system df --format '{{.Type}}|{{.Reclaimable}}' "
                                           "2>/dev/null | grep 'Build Cache' | cut -d'|' "
                                           "-f2 | grep -v '^0B'",
                                           "About {value} reclaimable"}));
        table.push_back(
            rule(category("dev.packages", G::developer, "Package Manager Caches",
                          "npm, Yarn, pnpm, Bun, pip, Homebrew, CocoaPods, SwiftPM, Go build, Gradle, "
                          "Electron, node-gyp \u2014 re-downloaded when needed.",
                          "shippingbox.circle", Risk::safe, true),
                 std::move(sources)));
    }

    {
        std::vector<Source> sources;
        appendItems(sources, {"~/go/pkg/mod", "~/.nuget/packages", "~/.m2/repository", "~/.cargo/registry",
                              "~/.gradle/wrapper/dists"});
        sources.push_back(Source::children("~/.cache"));
        table.push_back(
            rule(category("dev.stores", G::developer, "Large Library Stores",
                          "Go modules, NuGet, Maven, Cargo registry, Gradle wrapper, ~/.cache (e.g. "
                          "Hugging Face models) \u2014 everything must be re-downloaded on the next "
                          "project build.",
                          "books.vertical", Risk::caution, false),
                 std::move(sources)));
    }

    table.push_back(
        rule(category("user.trash", G::user, "Trash",
                      "Items in your Trash and on external drives \u2014 deleted permanently.", "trash",
                      Risk::caution, true),
             {Source::children("~/.Trash"),
              Source::children("/Volumes/*/.Trashes/" + std::to_string(Environment::realUserID()))},
             true));

    table.push_back(rule(category("user.mail", G::user, "Mail Downloads",
                                  "Copies of attachments Mail has opened (the originals stay in your email).",
                                  "envelope", Risk::safe, true),
                         childrenOf({"~/Library/Containers/com.apple.mail/Data/Library/Mail Downloads"}),
                         false, true));

    table.push_back(
        rule(category("user.ios", G::user, "iOS Backups & Updates",
                      "iPhone/iPad backups and downloaded .ipsw files \u2014 deleted backups cannot be "
                      "recovered. Choose manually.",
                      "iphone", Risk::review, false),
             {Source::children("~/Library/Application Support/MobileSync/Backup"),
              Source::items("~/Library/iTunes/*Software Updates/*.ipsw")},
             false, true));

    table.push_back(rule(category("user.temp", G::user, "Temporary Files",
                                  "Files in $TMPDIR not modified for more than 3 days.",
                                  "clock.arrow.circlepath", Risk::safe, true),
                         {Source::children(Environment::temporaryFolder(), 3, Source::DateKey::modified)}));

    table.push_back(
        rule(category("user.state", G::user, "Saved Application State",
                      "Window state apps remember when they quit \u2014 apps will open with fresh "
                      "windows.",
                      "macwindow.on.rectangle", Risk::safe, true),
             childrenOf({"~/Library/Saved Application State"})));

    table.push_back(
        rule(category("user.caches", G::user, "User Caches",
                      "~/Library/Caches \u2014 caches of every app, rebuilt on next launch "
                      "(iCloud/CloudKit caches in use are excluded).",
                      "internaldrive", Risk::safe, true),
             {Source::children("~/Library/Caches", std::nullopt, Source::DateKey::modified,
                               {"com.apple.bird", "CloudKit", "com.apple.cloudkit", "com.apple.HomeKit",
                                "com.apple.homed", "FamilyCircle", "com.apple.akd", "com.apple.ap.adprivacyd",
                                "com.apple.containermanagerd", "com.apple.findmy.fmipcore",
                                "com.apple.nsurlsessiond", bundleIdentifier, earlierBundleIdentifier})}));

    table.push_back(
        rule(category("user.logs", G::user, "Logs & Crash Reports",
                      "~/Library/Logs including DiagnosticReports \u2014 log files not needed for "
                      "anything to work.",
                      "doc.text.magnifyingglass", Risk::safe, true),
             childrenOf({"~/Library/Logs/DiagnosticReports", "~/Library/Logs"})));

    table.push_back(
        rule(category("user.downloads", G::user, "Old Downloads (> 90 days)",
                      "Items added to Downloads more than 90 days ago \u2014 review before deleting.",
                      "arrow.down.circle", Risk::review, false),
             {Source::children("~/Downloads", 90, Source::DateKey::added)}));

    table.push_back(
        rule(category("system.caches", G::system, "System Caches",
                      "/Library/Caches \u2014 system-wide caches for all users. Requires an administrator "
                      "password (SIP-protected items are skipped). Restarting afterwards is recommended.",
                      "cpu", Risk::caution, true),
             childrenOf({"/Library/Caches"})));

    {
        std::vector<Source> sources = childrenOf({"/Library/Logs/DiagnosticReports", "/Library/Logs"});
        appendItems(sources, {"/private/var/log/*.gz", "/private/var/log/*.bz2", "/private/var/log/*.old",
                              "/private/var/log/asl/*.asl", "/private/var/log/DiagnosticMessages/*.asl"});
        table.push_back(
            rule(category("system.logs", G::system, "System Logs & Diagnostics",
                          "/Library/Logs, system crash/diagnostic reports and old compressed logs in "
                          "/private/var/log.",
                          "list.bullet.rectangle", Risk::safe, true),
                 std::move(sources)));
    }

    table.push_back(rule(category("system.updates", G::system, "Old Software Updates",
                                  "/Library/Updates \u2014 leftover downloaded updates.",
                                  "arrow.triangle.2.circlepath", Risk::caution, false),
                         childrenOf({"/Library/Updates"})));

    table.push_back(rule(
        category(
            "system.snapshots", G::system, "Time Machine Local Snapshots",
            "Local snapshots kept by Time Machine (counted as \"System Data\") \u2014 backups on your Time "
            "Machine drive are not affected.",
            "clock.badge.checkmark", Risk::caution, false),
        {Source::command({"cmd.tmutil", "Delete all Time Machine local snapshots",
                          "for d in $(tmutil listlocalsnapshotdates / | grep -E '^[0-9]'); do tmutil "
                          "deletelocalsnapshots \"$d\"; done",
                          true, "tmutil", "tmutil listlocalsnapshots / 2>/dev/null | grep -c 'com.apple'",
                          "{value} snapshots found (actual size is unknown until deleted)"})}));

    table.push_back(
        rule(category(largeFilesCategoryID, G::large, "Large Files",
                      "Files above the size threshold in your home folder and any folders you add "
                      "\u2014 never pre-selected; you decide file by file.",
                      "doc.zipper", Risk::review, false),
             {Source::largeFiles()}));

    return table;
}

std::vector<CleanCategory> buildCategories() {
    const std::vector<Rule>& table = rules();
    std::vector<CleanCategory> ordered;
    ordered.reserve(table.size());
    for (CategoryGroup group : CategoryGroups::allCases())
        for (const Rule& each : table)
            if (each.category.group == group)
                ordered.push_back(each.category);
    return ordered;
}

std::set<std::string> buildProtectedPaths() {
    std::set<std::string> paths{"/",
                                "/System",
                                "/Library",
                                "/Applications",
                                "/Users",
                                "/private",
                                "/private/var",
                                "/private/var/folders",
                                "/private/var/log",
                                "/usr",
                                "/bin",
                                "/sbin",
                                "/Volumes",
                                "/Library/Caches",
                                "/Library/Logs",
                                "/Library/Updates"};
    const std::string& home = Environment::homeFolder();
    paths.insert(home);
    for (std::string_view relative :
         {"Library", "Library/Caches", "Library/Logs", "Library/Application Support", "Library/Containers",
          "Library/Developer", "Desktop", "Documents", "Downloads", "Movies", "Music", "Pictures", "Public",
          ".Trash", "Applications", ".cache"})
        // Joined, so that a home of "/" protects "/.cache" rather than "//.cache".
        paths.insert(Paths::standardizedPath(Paths::join(home, relative)));
    return paths;
}

} // namespace

const std::vector<Rule>& rules() {
    static const std::vector<Rule> table = buildRules();
    return table;
}

const std::vector<CleanCategory>& categories() {
    static const std::vector<CleanCategory> ordered = buildCategories();
    return ordered;
}

const std::set<std::string>& protectedPaths() {
    static const std::set<std::string> paths = buildProtectedPaths();
    return paths;
}

std::vector<Source> browserSources() {
    std::vector<Source> sources;
    sources.reserve(102);
    appendItems(sources, {"~/Library/Caches/com.apple.Safari", "~/Library/Caches/com.apple.WebKit.Networking",
                          "~/Library/Caches/Google", "~/Library/Caches/Microsoft Edge",
                          "~/Library/Caches/BraveSoftware", "~/Library/Caches/company.thebrowser.Browser",
                          "~/Library/Caches/Arc", "~/Library/Caches/com.operasoftware.Opera",
                          "~/Library/Caches/Vivaldi", "~/Library/Caches/Firefox", "~/Library/Caches/Mozilla",
                          "~/Library/Application Support/Firefox/Profiles/*/cache2",
                          "~/Library/Application Support/Firefox/Profiles/*/startupCache"});

    // Every Chromium profile folder keeps the same set of caches.
    constexpr std::array<std::string_view, 8> profileBases{
        "~/Library/Application Support/Google/Chrome/*",
        "~/Library/Application Support/Google/Chrome Beta/*",
        "~/Library/Application Support/Chromium/*",
        "~/Library/Application Support/Microsoft Edge/*",
        "~/Library/Application Support/BraveSoftware/Brave-Browser/*",
        "~/Library/Application Support/Arc/User Data/*",
        "~/Library/Application Support/Vivaldi/*",
        "~/Library/Application Support/com.operasoftware.Opera"};
    for (std::string_view base : profileBases)
        for (std::string_view name : CacheFolderNames::chromium)
            sources.push_back(Source::items(std::string(base) + "/" + std::string(name)));

    // Caches shared by all profiles of a browser, next to the profile folders.
    constexpr std::array<std::string_view, 3> browserFolders{
        "~/Library/Application Support/Google/Chrome", "~/Library/Application Support/Microsoft Edge",
        "~/Library/Application Support/BraveSoftware/Brave-Browser"};
    for (std::string_view folder : browserFolders)
        for (std::string_view name : CacheFolderNames::browserShared)
            sources.push_back(Source::items(std::string(folder) + "/" + std::string(name)));
    return sources;
}

std::vector<Source> electronSources() {
    std::vector<Source> sources;
    sources.reserve(14);
    std::vector<std::string_view> names(CacheFolderNames::chromium.begin(), CacheFolderNames::chromium.end());
    names.insert(names.end(), CacheFolderNames::electronOnly.begin(), CacheFolderNames::electronOnly.end());
    for (std::string_view name : names)
        sources.push_back(Source::items("~/Library/Application Support/*/" + std::string(name)));
    sources.push_back(Source::items("~/Library/Application Support/Spotify/PersistentCache"));
    return sources;
}

std::vector<Source> sandboxSources() {
    std::vector<Source> sources = childrenOf(
        {"~/Library/Containers/*/Data/Library/Caches", "~/Library/Group Containers/*/Library/Caches"});
    for (std::string_view name :
         {"Cache", "Code Cache", "GPUCache", "Service Worker/CacheStorage", "CachedData"})
        sources.push_back(
            Source::items("~/Library/Containers/*/Data/Library/Application Support/*/" + std::string(name)));
    return sources;
}

} // namespace CleanupRules
