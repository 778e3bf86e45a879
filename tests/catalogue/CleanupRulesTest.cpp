#include "catalogue/CleanupRules.h"

#include "CatalogueHome.h"
#include "catalogue/ProtectedPaths.h"
#include "platform/Environment.h"
#include "support/ForkedChild.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <variant>
#include <vector>

namespace {

const Rule& ruleWithID(const std::string& id) {
    const auto& all = CleanupRules::rules();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Rule& rule) { return rule.category.id == id; });
    if (found == all.end())
        throw std::runtime_error("no rule " + id);
    return *found;
}

// A readable form of one source, so a whole source list compares as strings.
std::string describe(const Source& source) {
    if (const auto* children = std::get_if<Source::Children>(&source.value)) {
        std::string text = "children " + children->pattern;
        if (children->olderThanDays)
            text += " older " + std::to_string(*children->olderThanDays);
        text += children->dateKey == Source::DateKey::added ? " added" : " modified";
        for (const std::string& name : children->exclude)
            text += " -" + name;
        return text;
    }
    if (const auto* items = std::get_if<Source::Items>(&source.value))
        return "items " + items->pattern;
    if (const auto* command = std::get_if<Source::Command>(&source.value))
        return "command " + command->id;
    return "largeFiles";
}

std::vector<std::string> describeAll(const std::vector<Source>& sources) {
    std::vector<std::string> out;
    for (const Source& source : sources)
        out.push_back(describe(source));
    return out;
}

std::vector<std::string> patternsOf(const std::vector<Source>& sources) {
    std::vector<std::string> out;
    for (const Source& source : sources) {
        if (const auto* items = std::get_if<Source::Items>(&source.value))
            out.push_back(items->pattern);
        else if (const auto* children = std::get_if<Source::Children>(&source.value))
            out.push_back(children->pattern);
    }
    return out;
}

const std::vector<std::string> tableOrder{
    "apps.browsers",     "apps.electron",  "apps.sandbox",  "apps.media",  "dev.derived",
    "dev.devicesupport", "dev.archives",   "dev.packages",  "dev.stores",  "user.trash",
    "user.mail",         "user.ios",       "user.temp",     "user.state",  "user.caches",
    "user.logs",         "user.downloads", "system.caches", "system.logs", "system.updates",
    "system.snapshots",  "large.files"};

} // namespace

TEST(CleanupRules, RulesStandInTableOrderWithDistinctIds) {
    catalogueHome();
    std::vector<std::string> ids;
    for (const Rule& rule : CleanupRules::rules())
        ids.push_back(rule.category.id);
    EXPECT_EQ(ids, tableOrder);
    EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), 22u);
}

TEST(CleanupRules, CategoriesAreGroupedInDeclarationOrder) {
    catalogueHome();
    const std::vector<std::string> expected{
        "user.trash",     "user.mail",        "user.ios",       "user.temp",         "user.state",
        "user.caches",    "user.logs",        "user.downloads", "system.caches",     "system.logs",
        "system.updates", "system.snapshots", "dev.derived",    "dev.devicesupport", "dev.archives",
        "dev.packages",   "dev.stores",       "apps.browsers",  "apps.electron",     "apps.sandbox",
        "apps.media",     "large.files"};
    std::vector<std::string> ids;
    for (const CleanCategory& category : CleanupRules::categories()) {
        ids.push_back(category.id);
        // The very record of the rule, not just one with the same id.
        const CleanCategory& own = ruleWithID(category.id).category;
        EXPECT_EQ(category.title, own.title);
        EXPECT_EQ(category.detail, own.detail);
        EXPECT_EQ(category.group, own.group);
        EXPECT_EQ(category.risk, own.risk);
        EXPECT_EQ(category.selectedByDefault, own.selectedByDefault);
    }
    EXPECT_EQ(ids, expected);
}

// The flags and risks that decide what is ticked, how it goes and what the confirmation
// warns about. Titles and details are shown as written and not repeated here.
TEST(CleanupRules, RecommendedPermanentFullDiskAccessAndRisk) {
    catalogueHome();
    std::set<std::string> recommended, permanent, fullDiskAccess, caution, review;
    for (const Rule& rule : CleanupRules::rules()) {
        const CleanCategory& category = rule.category;
        EXPECT_FALSE(category.title.empty() || category.detail.empty() || category.symbol.empty())
            << category.id;
        if (category.selectedByDefault)
            recommended.insert(category.id);
        if (rule.permanent)
            permanent.insert(category.id);
        if (rule.needsFullDiskAccess)
            fullDiskAccess.insert(category.id);
        if (category.risk == Risk::caution)
            caution.insert(category.id);
        if (category.risk == Risk::review)
            review.insert(category.id);
    }
    EXPECT_EQ(recommended, (std::set<std::string>{
                               "apps.browsers", "apps.electron", "apps.sandbox", "dev.derived",
                               "dev.devicesupport", "dev.packages", "user.trash", "user.mail", "user.temp",
                               "user.state", "user.caches", "user.logs", "system.caches", "system.logs"}));
    EXPECT_EQ(permanent, std::set<std::string>{"user.trash"});
    EXPECT_EQ(fullDiskAccess, (std::set<std::string>{"apps.sandbox", "user.mail", "user.ios"}));
    EXPECT_EQ(caution, (std::set<std::string>{"apps.media", "dev.stores", "user.trash", "system.caches",
                                              "system.updates", "system.snapshots"}));
    EXPECT_EQ(review, (std::set<std::string>{"dev.archives", "user.ios", "user.downloads", "large.files"}));
}

TEST(CleanupRules, BrowserSourcesAreFixedThenProfileMajorThenShared) {
    catalogueHome();
    const std::vector<Source> sources = CleanupRules::browserSources();
    ASSERT_EQ(sources.size(), 102u);
    for (const Source& source : sources)
        EXPECT_TRUE(std::holds_alternative<Source::Items>(source.value)) << describe(source);
    const std::vector<std::string> patterns = patternsOf(sources);
    EXPECT_EQ(std::set<std::string>(patterns.begin(), patterns.end()).size(), 102u);
    EXPECT_EQ(patterns.front(), "~/Library/Caches/com.apple.Safari");
    EXPECT_EQ(patterns[12], "~/Library/Application Support/Firefox/Profiles/*/startupCache");
    EXPECT_EQ(patterns[13], "~/Library/Application Support/Google/Chrome/*/Cache");
    EXPECT_EQ(patterns[22], "~/Library/Application Support/Google/Chrome/*/ShaderCache");
    EXPECT_EQ(patterns[23], "~/Library/Application Support/Google/Chrome Beta/*/Cache");
    // Opera keeps one profile, so its base has no "/*".
    EXPECT_EQ(patterns[83], "~/Library/Application Support/com.operasoftware.Opera/Cache");
    EXPECT_EQ(patterns[92], "~/Library/Application Support/com.operasoftware.Opera/ShaderCache");
    EXPECT_EQ(patterns[93], "~/Library/Application Support/Google/Chrome/ShaderCache");
    EXPECT_EQ(patterns.back(),
              "~/Library/Application Support/BraveSoftware/Brave-Browser/component_crx_cache");
    EXPECT_EQ(ruleWithID("apps.browsers").sources, sources);
}

TEST(CleanupRules, ElectronAndSandboxSources) {
    catalogueHome();
    const std::vector<Source> electron = CleanupRules::electronSources();
    ASSERT_EQ(electron.size(), 14u);
    const std::vector<std::string> patterns = patternsOf(electron);
    ASSERT_EQ(patterns.size(), 14u);
    EXPECT_EQ(patterns.front(), "~/Library/Application Support/*/Cache");
    EXPECT_EQ(patterns[9], "~/Library/Application Support/*/ShaderCache");
    EXPECT_EQ(patterns[10], "~/Library/Application Support/*/CachedData");
    EXPECT_EQ(patterns[12], "~/Library/Application Support/*/Crashpad/completed");
    EXPECT_EQ(patterns.back(), "~/Library/Application Support/Spotify/PersistentCache");
    EXPECT_EQ(ruleWithID("apps.electron").sources, electron);

    const std::vector<Source> sandbox = CleanupRules::sandboxSources();
    EXPECT_EQ(
        describeAll(sandbox),
        (std::vector<std::string>{
            "children ~/Library/Containers/*/Data/Library/Caches modified",
            "children ~/Library/Group Containers/*/Library/Caches modified",
            "items ~/Library/Containers/*/Data/Library/Application Support/*/Cache",
            "items ~/Library/Containers/*/Data/Library/Application Support/*/Code Cache",
            "items ~/Library/Containers/*/Data/Library/Application Support/*/GPUCache",
            "items ~/Library/Containers/*/Data/Library/Application Support/*/Service Worker/CacheStorage",
            "items ~/Library/Containers/*/Data/Library/Application Support/*/CachedData"}));
    EXPECT_EQ(ruleWithID("apps.sandbox").sources, sandbox);
}

// Sources whose values are read when the table is built or that carry options.
TEST(CleanupRules, SourcesWithOptionsAndBuildTimeValues) {
    const FakeHome& home = catalogueHome();
    using List = std::vector<std::string>;
    EXPECT_EQ(describeAll(ruleWithID("user.trash").sources),
              (List{"children ~/.Trash modified",
                    "children /Volumes/*/.Trashes/" + std::to_string(::getuid()) + " modified"}));
    EXPECT_EQ(describeAll(ruleWithID("user.temp").sources),
              List{"children " + home.tmp() + " older 3 modified"});
    EXPECT_EQ(describeAll(ruleWithID("user.downloads").sources), List{"children ~/Downloads older 90 added"});
    // std::set keeps the exclusions sorted byte-wise.
    EXPECT_EQ(
        describeAll(ruleWithID("user.caches").sources),
        List{"children ~/Library/Caches modified -CloudKit -FamilyCircle -app.veltro.Veltro "
             "-app.veltro.cleaner -com.apple.HomeKit -com.apple.akd -com.apple.ap.adprivacyd -com.apple.bird "
             "-com.apple.cloudkit -com.apple.containermanagerd -com.apple.findmy.fmipcore -com.apple.homed "
             "-com.apple.nsurlsessiond"});
    // The crash reports stand before the folder that holds them, so they keep their own items.
    EXPECT_EQ(
        describeAll(ruleWithID("user.logs").sources),
        (List{"children ~/Library/Logs/DiagnosticReports modified", "children ~/Library/Logs modified"}));
    EXPECT_EQ(describeAll(ruleWithID("large.files").sources), List{"largeFiles"});

    // Every other children source has neither age limit nor exclusions.
    for (const Rule& rule : CleanupRules::rules()) {
        const std::string& id = rule.category.id;
        if (id == "user.temp" || id == "user.downloads" || id == "user.caches")
            continue;
        for (const Source& source : rule.sources) {
            if (const auto* children = std::get_if<Source::Children>(&source.value)) {
                EXPECT_EQ(source, Source::children(children->pattern)) << id;
            }
        }
    }

    std::vector<size_t> counts;
    for (const Rule& rule : CleanupRules::rules())
        counts.push_back(rule.sources.size());
    EXPECT_EQ(counts,
              (std::vector<size_t>{102, 14, 7, 5, 3, 4, 1, 21, 6, 2, 1, 2, 1, 1, 1, 2, 1, 1, 7, 1, 1, 1}));
    const std::vector<std::string> packages = patternsOf(ruleWithID("dev.packages").sources);
    ASSERT_EQ(packages.size(), 19u);
    EXPECT_EQ(packages.front(), "~/.npm/_cacache");
    EXPECT_EQ(packages[9], "~/Library/Caches/Homebrew");
    EXPECT_EQ(packages.back(), "~/Library/Caches/JetBrains");
}

TEST(CleanupRules, CommandSourcesCarryTheirExactTexts) {
    catalogueHome();
    auto command = [](const std::string& ruleID, size_t index) {
        return std::get<Source::Command>(ruleWithID(ruleID).sources.at(index).value);
    };
    EXPECT_EQ(command("dev.devicesupport", 3),
              (Source::Command{"cmd.simctl", "Delete unavailable Simulators",
                               "xcrun simctl delete unavailable", false, "xcrun",
                               "xcrun simctl list devices unavailable 2>/dev/null | grep -c '(unavailable'",
                               "{value} found"}));
    EXPECT_EQ(command("dev.packages", 19),
              (Source::Command{"cmd.brew", "brew cleanup (remove old Homebrew package versions)",
                               "brew cleanup -s --prune=all", false, "brew", std::nullopt, std::nullopt}));
    EXPECT_EQ(
        command("dev.packages", 20),
        (Source::Command{"cmd.docker", "Docker/OrbStack build cache (docker builder prune)",
                         "docker builder prune -af", false, "docker",
                         "docker system df --format '{{.Type}}|{{.Reclaimable}}' 2>/dev/null | grep 'Build "
                         "Cache' | cut -d'|' -f2 | grep -v '^0B'",
                         "About {value} reclaimable"}));
    EXPECT_EQ(
        command("system.snapshots", 0),
        (Source::Command{"cmd.tmutil", "Delete all Time Machine local snapshots",
                         "for d in $(tmutil listlocalsnapshotdates / | grep -E '^[0-9]'); do tmutil "
                         "deletelocalsnapshots \"$d\"; done",
                         true, "tmutil", "tmutil listlocalsnapshots / 2>/dev/null | grep -c 'com.apple'",
                         "{value} snapshots found (actual size is unknown until deleted)"}));
}

TEST(CleanupRules, ProtectedPathsAreTheSystemFoldersAndTheHomesOwn) {
    const std::string home = catalogueHome().home();
    ASSERT_EQ(Environment::homeFolder(), home);
    std::set<std::string> expected{"/",
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
                                   "/Library/Updates",
                                   home};
    for (const char* name : {"Library", "Library/Caches", "Library/Logs", "Library/Application Support",
                             "Library/Containers", "Library/Developer", "Desktop", "Documents", "Downloads",
                             "Movies", "Music", "Pictures", "Public", ".Trash", "Applications", ".cache"})
        expected.insert(home + "/" + name);
    EXPECT_EQ(CleanupRules::protectedPaths(), expected);
    EXPECT_EQ(CleanupRules::protectedPaths().size(), 33u);
}

TEST(CleanupRules, AHomeOfTheRootFolderProtectsItsFoldersThere) {
    const int status = runInChild([] {
        ::setenv("HOME", "/", 1);
        if (Environment::homeFolder() != "/")
            return kChildCannotSetUp;
        // One of the rule table's and one of the Linux ones.
        return ProtectedPaths::contains("/.cache") && ProtectedPaths::contains("/.local/share/Trash") ? 0 : 1;
    });
    if (status == kChildCannotSetUp)
        GTEST_SKIP() << "the home folder was read earlier in this process; run this test on its own";
    EXPECT_EQ(status, 0);
}
