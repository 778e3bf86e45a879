#include "removal/Permissions.h"

#include "platform/Environment.h"
#include "support/FakeHome.h"
#include "support/PathQueries.h"
#include "support/ProcessCounts.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <sys/stat.h>
#include <thread>

namespace {

class PermissionsTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (Environment::homeFolder() != home.home())
            GTEST_SKIP() << "the home folder was read earlier in this process; run this test on its own";
        ASSERT_NE(::access(Permissions::probePaths()[0].c_str(), F_OK), 0)
            << "the system-wide probe file exists on this machine";
    }

    FakeHome home;
};

} // namespace

TEST_F(PermissionsTest, ProbeOrderAndNoFileMeansNoAccess) {
    EXPECT_EQ(Permissions::probePaths(),
              (std::vector<std::string>{"/Library/Application Support/com.apple.TCC/TCC.db",
                                        home.home() + "/Library/Safari/CloudTabs.db",
                                        home.home() + "/Library/Safari/Bookmarks.plist"}));
    home.makeDir("Library/Safari");
    const int before = openDescriptorCount();
    EXPECT_FALSE(Permissions::hasFullDiskAccess());
    EXPECT_EQ(openDescriptorCount(), before);
    // The probe creates nothing.
    EXPECT_TRUE(entriesOf(home.path("Library/Safari")).empty());
}

TEST_F(PermissionsTest, UnreadableFileIsSkippedForTheNextOne) {
    const std::string cloudTabs = home.makeFile("Library/Safari/CloudTabs.db", "tabs");
    ASSERT_EQ(::chmod(cloudTabs.c_str(), 0), 0);
    // As another user: the unreadable file alone is no access, with a readable
    // successor it is.
    const int alone = runUnprivileged([] { return Permissions::hasFullDiskAccess() ? 1 : 0; });
    EXPECT_EQ(alone, 0);
    home.makeFile("Library/Safari/Bookmarks.plist", "bookmarks");
    const int withBookmarks = runUnprivileged([] { return Permissions::hasFullDiskAccess() ? 1 : 0; });
    EXPECT_EQ(withBookmarks, 1);
}

TEST_F(PermissionsTest, BookmarksAloneGrantAccess) {
    home.makeFile("Library/Safari/Bookmarks.plist", "bookmarks");
    const int descriptors = openDescriptorCount();
    EXPECT_TRUE(Permissions::hasFullDiskAccess());
    EXPECT_EQ(openDescriptorCount(), descriptors);
}

TEST_F(PermissionsTest, FifoAtAProbePathDoesNotBlock) {
    home.makeDir("Library/Safari");
    home.tree().makeFifo("home/Library/Safari/CloudTabs.db");
    // Detached, so a probe stuck in open() fails this test instead of hanging it.
    auto answer = std::make_shared<std::promise<bool>>();
    std::future<bool> result = answer->get_future();
    std::thread([answer] { answer->set_value(Permissions::hasFullDiskAccess()); }).detach();
    ASSERT_EQ(result.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    EXPECT_TRUE(result.get());
}
