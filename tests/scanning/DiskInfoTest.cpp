#include "scanning/DiskInfo.h"

#include "platform/Environment.h"
#include "support/FakeHome.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace {

// Size and available bytes of the volume holding `path`, as df reports them.
bool readDf(const std::string& path, int64_t& size, int64_t& available) {
    const std::string command = "df -B1 --output=size,avail '" + path + "'";
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe)
        return false;
    std::string output;
    char buffer[256];
    while (size_t n = std::fread(buffer, 1, sizeof buffer, pipe))
        output.append(buffer, n);
    if (::pclose(pipe) != 0)
        return false;
    std::istringstream lines(output);
    std::string header;
    std::getline(lines, header);
    return static_cast<bool>(lines >> size >> available);
}

} // namespace

TEST(DiskInfo, ReadsTheHomeFolderVolume) {
    FakeHome home;
    if (Environment::homeFolder() != home.home())
        GTEST_SKIP() << "home folder already read in this process";

    const DiskInfo before = DiskInfo::current();
    int64_t dfSize = 0;
    int64_t dfAvailable = 0;
    ASSERT_TRUE(readDf(home.home(), dfSize, dfAvailable));
    const DiskInfo after = DiskInfo::current();

    EXPECT_GT(before.total, 0);
    EXPECT_GT(before.available, 0);
    EXPECT_LE(before.available, before.total);
    EXPECT_EQ(before.total, dfSize);
    EXPECT_EQ(after.total, dfSize);
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
