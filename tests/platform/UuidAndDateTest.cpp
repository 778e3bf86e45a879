#include "platform/Date.h"
#include "platform/Uuid.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

TEST(Uuid, UpperCaseVersionFourAndFresh) {
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        const std::string uuid = makeUuid();
        EXPECT_TRUE(std::regex_match(uuid, form)) << uuid;
        seen.insert(uuid);
    }
    EXPECT_EQ(seen.size(), 100u);
}

TEST(Date, Iso8601InUtcAndTheDistantPast) {
    using std::chrono::seconds;
    EXPECT_EQ(Dates::iso8601(Date{seconds{0}}), "1970-01-01T00:00:00Z");
    EXPECT_EQ(Dates::iso8601(Date{seconds{1'700'000'000} + std::chrono::milliseconds{999}}),
              "2023-11-14T22:13:20Z");
    EXPECT_EQ(Dates::iso8601(Date{seconds{-1}}), "1969-12-31T23:59:59Z");
    EXPECT_LT(Dates::distantPast(), Date{seconds{-2'000'000'000}});
}
