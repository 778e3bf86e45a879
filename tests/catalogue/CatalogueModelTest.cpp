#include "catalogue/CategoryGroup.h"
#include "catalogue/RemovalMethod.h"
#include "catalogue/Risk.h"
#include "catalogue/ScanItem.h"

#include "CatalogueHome.h"

#include "support/TranslatorScope.h"

#include <gtest/gtest.h>

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
