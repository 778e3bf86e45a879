#include "removal/Permissions.h"

#include "support/FakeHome.h"
#include "support/ProcessCounts.h"
#include "support/SandboxRoot.h"

#include <gtest/gtest.h>

// Linux has no Full Disk Access setting: only a sandbox that hides the home folder
// takes the access away, and leaving it gives the access back.
TEST(Permissions, OnlyASandboxTakesFullDiskAccessAway) {
    FakeHome home;
    const int descriptors = openDescriptorCount();
    ASSERT_TRUE(Permissions::hasFullDiskAccess()) << "the suite runs inside a sandbox";
    EXPECT_EQ(openDescriptorCount(), descriptors);
    SandboxRoot sandbox;
    if (!sandbox.entered())
        GTEST_SKIP() << "building a sandbox root takes root";
    EXPECT_FALSE(Permissions::hasFullDiskAccess());
    sandbox.leave();
    EXPECT_TRUE(Permissions::hasFullDiskAccess());
}
