#include "scanning/DiskInfo.h"

#include "platform/Environment.h"
#include "platform/ShellQuote.h"
#include "removal/Shell.h"
#include "support/FakeHome.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

TEST(DiskInfo, ReadsTheHomeFolderVolume) {
    FakeHome home;
    if (Environment::homeFolder() != home.home())
        GTEST_SKIP() << "home folder already read in this process";

    const DiskInfo before = DiskInfo::current();
    std::istringstream df(
        Shell::run("df -B1 --output=size,avail " + shellQuote(home.home()), 30).standardOutput);
    std::string header;
    int64_t dfSize = 0;
    int64_t dfAvailable = 0;
    ASSERT_TRUE(std::getline(df, header) && df >> dfSize >> dfAvailable);
    const DiskInfo after = DiskInfo::current();

    EXPECT_EQ(before.total, dfSize);
    // Others write to the same disk meanwhile: df's figure must lie between the two
    // readings, give or take a little.
    constexpr int64_t kSlack = 64 << 20;
    EXPECT_GE(dfAvailable, std::min(before.available, after.available) - kSlack);
    EXPECT_LE(dfAvailable, std::max(before.available, after.available) + kSlack);
}

TEST(DiskInfo, ReportsZeroWhenTheHomeFolderCannotBeRead) {
    ::setenv("HOME", "/veltro-no-such-home-7f3a", 1);
    if (Environment::homeFolder() != "/veltro-no-such-home-7f3a")
        GTEST_SKIP() << "home folder already read in this process";
    EXPECT_EQ(DiskInfo::current(), DiskInfo{});
}
