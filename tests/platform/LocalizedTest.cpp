#include "platform/Localized.h"

#include "support/TranslatorScope.h"

#include <gtest/gtest.h>

#include <map>

// Without a translator the key itself is the text.
TEST(Localized, PlaceholdersAreReplacedOnceAndInAnyOrder) {
    EXPECT_EQ(localized("Scan"), "Scan");
    EXPECT_EQ(localizedFormat("%2, then %1, then %2", {"a", "b"}), "b, then a, then b");
    // Values are inserted as they are, even when they look like placeholders.
    EXPECT_EQ(localizedFormat("%1 and %2", {"%2", "x"}), "%2 and x");
    // A placeholder without a value stays visible; a lone % is kept.
    EXPECT_EQ(localizedFormat("%1 %3 100%", {"a", "b"}), "a %3 100%");
    EXPECT_EQ(localizedFormat("%1%", {"50"}), "50%");
    EXPECT_EQ(localizedFormat("%9", {"1", "2", "3", "4", "5", "6", "7", "8", "nine"}), "nine");
}

TEST(Localized, TheTranslatorSeesTheWholeSentence) {
    std::vector<std::string> asked;
    const std::map<std::string, std::string, std::less<>> german{{"%1 of %2", "%2 \u2014 davon %1"},
                                                                 {"Scan", "Scannen"}};
    TranslatorScope translator([&](std::string_view key) {
        asked.emplace_back(key);
        const auto found = german.find(key);
        return found == german.end() ? std::string(key) : found->second;
    });
    EXPECT_EQ(localized("Scan"), "Scannen");
    EXPECT_EQ(localizedFormat("%1 of %2", {"3 GB", "10 GB"}), "10 GB \u2014 davon 3 GB");
    EXPECT_EQ(localized("Untranslated"), "Untranslated");
    EXPECT_EQ(asked, (std::vector<std::string>{"Scan", "%1 of %2", "Untranslated"}));
    // An empty translator gives the keys back.
    installTranslator({});
    EXPECT_EQ(localized("Scan"), "Scan");
}
