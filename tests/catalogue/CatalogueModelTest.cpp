#include "catalogue/CategoryGroup.h"
#include "catalogue/CleanCategory.h"
#include "catalogue/RemovalMethod.h"
#include "catalogue/Risk.h"
#include "catalogue/ScanItem.h"

#include "CatalogueHome.h"
#include "platform/Localized.h"

#include "support/TranslatorScope.h"

#include <gtest/gtest.h>

#include <unordered_set>
#include <vector>

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

TEST(CategoryGroup, RawValuesTitlesAndTintsInDeclarationOrder) {
    const auto& groups = CategoryGroups::allCases();
    const std::vector<CategoryGroup> order(groups.begin(), groups.end());
    EXPECT_EQ(order, (std::vector<CategoryGroup>{CategoryGroup::user, CategoryGroup::system,
                                                 CategoryGroup::developer, CategoryGroup::apps,
                                                 CategoryGroup::large}));
    const char* raw[] = {"user", "system", "developer", "apps", "large"};
    const char* titles[] = {"User", "System \u00B7 admin", "Developer", "Browsers & Apps", "Large Files"};
    for (size_t i = 0; i < order.size(); ++i) {
        EXPECT_EQ(CategoryGroups::rawValue(order[i]), raw[i]);
        EXPECT_EQ(CategoryGroups::id(order[i]), raw[i]);
        EXPECT_EQ(CategoryGroups::fromRawValue(raw[i]), order[i]);
        EXPECT_EQ(CategoryGroups::title(order[i]), titles[i]);
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

TEST(RemovalMethod, CommandsCompareByTextAndFlag) {
    EXPECT_EQ(RemovalMethod::makeCommand("brew cleanup", false),
              RemovalMethod::makeCommand("brew cleanup", false));
    EXPECT_NE(RemovalMethod::makeCommand("brew cleanup", false),
              RemovalMethod::makeCommand("brew cleanup", true));
    EXPECT_NE(RemovalMethod::makeCommand("brew cleanup", false),
              RemovalMethod::makeCommand("brew cleanup -s", false));
    EXPECT_NE(RemovalMethod::trash(), RemovalMethod::adminTrash());
    EXPECT_NE(RemovalMethod::trash(), RemovalMethod::permanent());
    EXPECT_EQ(RemovalMethod::adminTrash().name(), "adminTrash");
    EXPECT_TRUE(RemovalMethod::makeCommand("x", true).isCommand());
    EXPECT_FALSE(RemovalMethod::permanent().isCommand());
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

TEST(ScanItem, EqualityCoversEveryField) {
    const ScanItem base = pathItem("/data/cache/blob");
    ScanItem same = base;
    EXPECT_EQ(base, same);
    EXPECT_EQ(std::hash<ScanItem>{}(base), std::hash<ScanItem>{}(same));

    std::vector<ScanItem> variants(10, base);
    variants[0].id = "/data/cache/other";
    variants[1].categoryID = "user.logs";
    variants[2].name = "other";
    variants[3].url = std::nullopt;
    variants[4].size = 8192;
    variants[5].size = std::nullopt;
    variants[6].modified = Date{std::chrono::seconds{1'700'000'001}};
    variants[7].method = RemovalMethod::permanent();
    variants[8].note = "in use";
    variants[9].method = RemovalMethod::makeCommand("", false);
    for (size_t i = 0; i < variants.size(); ++i) {
        EXPECT_NE(variants[i], base) << "variant " << i;
        EXPECT_EQ(variants[i].id == base.id, i != 0) << "variant " << i;
    }
    // Same id, different size: a rescan that measured differently is a different item.
    std::unordered_set<ScanItem> set{base, variants[4], same};
    EXPECT_EQ(set.size(), 2u);
}

TEST(ScanItem, LocationShowsCommandTextOrParentFolderWithHomeAbbreviated) {
    const std::string home = catalogueHome().home();

    ScanItem command{"cmd.brew",
                     "dev.packages",
                     "brew cleanup",
                     std::nullopt,
                     std::nullopt,
                     std::nullopt,
                     RemovalMethod::makeCommand("brew cleanup -s --prune=all", false),
                     std::nullopt};
    EXPECT_EQ(command.location(), "brew cleanup -s --prune=all");

    EXPECT_EQ(pathItem(home + "/Library/Caches/com.example.app").location(), "~/Library/Caches");
    EXPECT_EQ(pathItem(home + "/notes.txt").location(), "~");
    EXPECT_EQ(pathItem("/Library/Caches/com.example.daemon").location(), "/Library/Caches");
    // A sibling whose name merely starts with the home folder's name is not inside it.
    EXPECT_EQ(pathItem(home + "2/file").location(), home + "2");

    ScanItem bare = pathItem("/x/y");
    bare.url = std::nullopt;
    EXPECT_EQ(bare.location(), "");
}

TEST(ScanItem, UnknownSizeAndDateSortLast) {
    ScanItem item = pathItem("/data/a");
    EXPECT_EQ(item.sortSize(), 4096);
    EXPECT_EQ(item.sortDate(), Date{std::chrono::seconds{1'700'000'000}});

    item.size = std::nullopt;
    item.modified = std::nullopt;
    EXPECT_EQ(item.sortSize(), -1);
    EXPECT_EQ(item.sortDate(), Dates::distantPast());
    // Older than any date a file system can report, the epoch's negative side included.
    EXPECT_LT(item.sortDate(), Date{std::chrono::seconds{-1'000'000'000}});

    item.size = 0;
    EXPECT_EQ(item.sortSize(), 0);
}
