#include "catalogue/CategoryGroup.h"
#include "catalogue/CleanCategory.h"
#include "catalogue/RemovalMethod.h"
#include "catalogue/Risk.h"
#include "catalogue/ScanItem.h"

#include "CatalogueHome.h"

#include "support/TranslatorScope.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace {

ScanItem pathItem(const std::string& path) {
    return ScanItem{path,
                    "user.caches",
                    path.substr(path.rfind('/') + 1),
                    path,
                    4096,
                    Date{std::chrono::seconds{1'700'000'000}},
                    RemovalMethod::trash(),
                    std::nullopt};
}

} // namespace

// Raw values are ids in reports and the window; parsing them is exact.
TEST(CategoryGroup, RawValuesRoundTripAndNothingElseParses) {
    for (const CategoryGroup group : CategoryGroups::allCases()) {
        EXPECT_EQ(CategoryGroups::fromRawValue(CategoryGroups::rawValue(group)), group);
        EXPECT_EQ(CategoryGroups::id(group), CategoryGroups::rawValue(group));
    }
    for (const char* unknown : {"User", "", "user ", "dev"})
        EXPECT_FALSE(CategoryGroups::fromRawValue(unknown)) << unknown;
}

TEST(CategoryGroup, TitlesAndRiskLabelsAreLocalised) {
    TranslatorScope translator([](std::string_view key) { return "[" + std::string(key) + "]"; });
    EXPECT_EQ(CategoryGroups::title(CategoryGroup::system), "[System \u00B7 admin]");
    EXPECT_EQ(Risks::label(Risk::caution), "[Caution]");
    EXPECT_EQ(Risks::name(Risk::caution), "caution");
    // Sorting by risk puts the safest first.
    EXPECT_TRUE(Risk::safe < Risk::caution && Risk::caution < Risk::review);
}

TEST(CleanCategory, SameIdIsTheSameCategory) {
    const CleanCategory a{"user.caches",   CategoryGroup::user, "User Caches", "one",
                          "internaldrive", Risk::safe,          true};
    const CleanCategory b{"user.caches", CategoryGroup::system, "Other title", "two",
                          "cpu",         Risk::review,          false};
    const CleanCategory c{"user.logs",     CategoryGroup::user, "User Caches", "one",
                          "internaldrive", Risk::safe,          true};
    EXPECT_EQ(a, b);
    EXPECT_EQ(std::hash<CleanCategory>{}(a), std::hash<CleanCategory>{}(b));
    EXPECT_NE(a, c);
    const std::unordered_set<CleanCategory> set{a, b, c};
    EXPECT_EQ(set.size(), 2u);
}

// Items are compared field by field; the hash must agree, so that a rescan that
// measured differently is a different item in a set.
TEST(ScanItem, EqualItemsHashAlikeAndASizeChangeMakesAnotherItem) {
    const ScanItem base = pathItem("/data/cache/blob");
    ScanItem resized = base;
    resized.size = 8192;
    EXPECT_EQ(std::hash<ScanItem>{}(base), std::hash<ScanItem>{}(ScanItem(base)));
    EXPECT_EQ((std::unordered_set<ScanItem>{base, resized, base}.size()), 2u);
}

TEST(ScanItem, LocationShowsCommandTextOrParentFolderWithHomeAbbreviated) {
    const std::string home = catalogueHome().home();

    ScanItem command = pathItem("/x/cmd.brew");
    command.method = RemovalMethod::makeCommand("brew cleanup -s --prune=all", false);
    EXPECT_EQ(command.location(), "brew cleanup -s --prune=all");

    EXPECT_EQ(pathItem(home + "/Library/Caches/com.example.app").location(), "~/Library/Caches");
    EXPECT_EQ(pathItem("/Library/Caches/com.example.daemon").location(), "/Library/Caches");

    ScanItem bare = pathItem("/x/y");
    bare.url = std::nullopt;
    EXPECT_EQ(bare.location(), "");
}
