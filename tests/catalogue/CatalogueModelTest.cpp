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
}

// A category is its id whatever its other fields; an item is all of its fields, so a
// rescan that measured differently is another item in a set.
TEST(CatalogueValues, CategoriesAreTheirIdAndItemsAllTheirFieldsInSets) {
    const CleanCategory caches{"user.caches", CategoryGroup::user, "User Caches", "", "", Risk::safe, true};
    const CleanCategory renamed{"user.caches", CategoryGroup::system, "Other", "x",
                                "cpu",         Risk::review,          false};
    const CleanCategory logs{"user.logs", CategoryGroup::user, "User Caches", "", "", Risk::safe, true};
    EXPECT_EQ(caches, renamed);
    EXPECT_NE(caches, logs);
    EXPECT_EQ((std::unordered_set<CleanCategory>{caches, renamed, logs}.size()), 2u);
    const ScanItem item = pathItem("/data/cache/blob");
    ScanItem resized = item;
    resized.size = 8192;
    EXPECT_EQ((std::unordered_set<ScanItem>{item, resized, ScanItem(item)}.size()), 2u);
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
