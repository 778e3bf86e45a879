// The rule table's contents are its own documentation; where each rule's paths land is
// checked by scanning real trees (the scanner and Linux desktop suites). Here: the
// order that decides which rule claims a path, the display order built from it and the
// folders a home of "/" protects.

#include "catalogue/CleanupRules.h"

#include "CatalogueHome.h"
#include "catalogue/ProtectedPaths.h"
#include "platform/Environment.h"
#include "support/ForkedChild.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <vector>

namespace {

size_t tablePosition(const std::string& id) {
    const std::vector<Rule>& rules = CleanupRules::rules();
    return static_cast<size_t>(
        std::find_if(rules.begin(), rules.end(), [&](const Rule& rule) { return rule.category.id == id; }) -
        rules.begin());
}

} // namespace

// The scanner gives a path to the first rule that reaches it: the narrower rules stand
// before the general ones that would swallow them.
TEST(CleanupRules, RulesStandInTableOrder) {
    catalogueHome();
    std::vector<std::string> ids;
    for (const Rule& rule : CleanupRules::rules())
        ids.push_back(rule.category.id);
    EXPECT_EQ(ids,
              (std::vector<std::string>{
                  "apps.browsers",     "apps.electron",  "apps.sandbox",  "apps.media",  "dev.derived",
                  "dev.devicesupport", "dev.archives",   "dev.packages",  "dev.stores",  "user.trash",
                  "user.mail",         "user.ios",       "user.temp",     "user.state",  "user.caches",
                  "user.logs",         "user.downloads", "system.caches", "system.logs", "system.updates",
                  "system.snapshots",  "large.files"}));
}

// Every rule's category once, group by group in the groups' order and in table order
// within a group, each the very record of its rule (categories compare by id alone).
// What the user must review (archives, backups, old downloads, large files) is never
// ticked for them.
TEST(CleanupRules, CategoriesHoldEveryRuleOnceInGroupOrderAndNoneToReviewIsRecommended) {
    catalogueHome();
    const std::vector<Rule>& rules = CleanupRules::rules();
    const std::vector<CleanCategory>& categories = CleanupRules::categories();
    ASSERT_EQ(categories.size(), rules.size());
    for (size_t i = 0; i < categories.size(); ++i) {
        const CleanCategory& category = categories[i];
        const size_t at = tablePosition(category.id);
        ASSERT_LT(at, rules.size()) << category.id;
        const CleanCategory& own = rules[at].category;
        EXPECT_EQ(std::tie(category.title, category.detail, category.group, category.risk,
                           category.selectedByDefault),
                  std::tie(own.title, own.detail, own.group, own.risk, own.selectedByDefault))
            << category.id;
        EXPECT_FALSE(category.risk == Risk::review && category.selectedByDefault) << category.id;
        if (i > 0) {
            const CleanCategory& previous = categories[i - 1];
            EXPECT_TRUE(previous.group < category.group ||
                        (previous.group == category.group && tablePosition(previous.id) < at))
                << previous.id << " before " << category.id;
        }
    }
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
