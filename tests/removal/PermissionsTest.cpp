#include "removal/Permissions.h"

#include "support/ForkedChild.h"
#include "support/ProcessCounts.h"
#include "support/TempTree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

// Linux has no Full Disk Access setting: only a sandbox that hides the home folder
// takes the access away. The sandboxes here are real roots of their own that a child
// enters, with and without the marker a Flatpak sandbox carries.
TEST(Permissions, OnlyASandboxTakesFullDiskAccessAway) {
    struct stat st {};
    if (::lstat(Permissions::sandboxMarker, &st) == 0)
        GTEST_SKIP() << "the suite runs inside a Flatpak sandbox";
    const int descriptors = openDescriptorCount();
    EXPECT_TRUE(Permissions::hasFullDiskAccess());
    EXPECT_EQ(openDescriptorCount(), descriptors);

    TempTree tree;
    tree.makeFile("flatpak/.flatpak-info", "[Application]\nname=app.veltro.Veltro\n");
    tree.makeDir("plain/home");
    for (const auto& [root, expected] : {std::pair{"flatpak", 0}, std::pair{"plain", 1}}) {
        const std::string folder = tree.path(root);
        const int answer = runInChild([&folder] {
            if (::chroot(folder.c_str()) != 0 || ::chdir("/") != 0)
                return kChildCannotSetUp;
            return Permissions::hasFullDiskAccess() ? 1 : 0;
        });
        if (answer == kChildCannotSetUp)
            GTEST_SKIP() << "entering a root of its own is not permitted here";
        EXPECT_EQ(answer, expected) << root;
    }
}
