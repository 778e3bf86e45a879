#include "platform/Paths.h"

#include "platform/Environment.h"
#include "support/FakeHome.h"
#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

// The home folder is read once per process; a fake one set up before the first read
// and kept for the whole process (a FakeHome removed at the end of a test would
// leave HOME and TMPDIR pointing at nothing for the tests after it). When another
// suite of this binary read the home first, the tests compare with what it read.
const std::string& sharedHomeFolder() {
    static const FakeHome fake;
    return Environment::homeFolder();
}

} // namespace

TEST(Paths, LastComponentAndParentFolder) {
    EXPECT_EQ(Paths::lastComponent("/a/b"), "b");
    EXPECT_EQ(Paths::lastComponent("/a/b/"), "b");
    EXPECT_EQ(Paths::lastComponent("/"), "/");
    EXPECT_EQ(Paths::lastComponent("name"), "name");

    EXPECT_EQ(Paths::parentFolder("/a/b"), "/a");
    EXPECT_EQ(Paths::parentFolder("/a/b/"), "/a");
    EXPECT_EQ(Paths::parentFolder("/a//b"), "/a");
    EXPECT_EQ(Paths::parentFolder("/a"), "/");
    EXPECT_EQ(Paths::parentFolder("/"), "/");
    EXPECT_EQ(Paths::parentFolder("name"), "");
    EXPECT_EQ(Paths::parentFolder("dir/name"), "dir");

    EXPECT_EQ(Paths::join("/a", "b"), "/a/b");
    EXPECT_EQ(Paths::join("/a/", "b"), "/a/b");
    EXPECT_EQ(Paths::join("/", "b"), "/b");
}

TEST(Paths, StandardizedPathIsLexical) {
    const std::string& home = sharedHomeFolder();
    EXPECT_EQ(Paths::standardizedPath("~"), home);
    EXPECT_EQ(Paths::standardizedPath("~/"), home);
    EXPECT_EQ(Paths::standardizedPath("~/Library/../Downloads/"), home + "/Downloads");
    // Only a leading tilde is the home folder.
    EXPECT_EQ(Paths::standardizedPath("/a/~/b"), "/a/~/b");
    EXPECT_EQ(Paths::standardizedPath("~other/x"), "~other/x");

    EXPECT_EQ(Paths::standardizedPath("/a/./b"), "/a/b");
    EXPECT_EQ(Paths::standardizedPath("/a//b///c/"), "/a/b/c");
    EXPECT_EQ(Paths::standardizedPath("/a/b/.."), "/a");
    EXPECT_EQ(Paths::standardizedPath("/a/b/../../.."), "/");
    EXPECT_EQ(Paths::standardizedPath("/.."), "/");
    EXPECT_EQ(Paths::standardizedPath("//"), "/");
    EXPECT_EQ(Paths::standardizedPath("/a/..b/c"), "/a/..b/c");
    EXPECT_EQ(Paths::standardizedPath("a/../../b"), "../b");
}

TEST(Paths, CanonicalPathResolvesTheParentButNeverTheItemItself) {
    TempTree tree;
    tree.makeDir("real/inner");
    tree.makeFile("real/file");
    tree.makeSymlink("link", "real");
    tree.makeSymlink("real/fileLink", "file");
    tree.makeSymlink("real/dangling", "nowhere");
    const std::string root = tree.root();

    EXPECT_EQ(Paths::canonicalPath(root + "/link/file"), root + "/real/file");
    EXPECT_EQ(Paths::canonicalPath(root + "/link/inner/../file"), root + "/real/file");
    EXPECT_EQ(Paths::canonicalPath(root + "/link"), root + "/link");
    EXPECT_EQ(Paths::canonicalPath(root + "/link/fileLink"), root + "/real/fileLink");
    EXPECT_EQ(Paths::canonicalPath(root + "/real/dangling"), root + "/real/dangling");
    EXPECT_EQ(Paths::canonicalPath(root + "/link/inner/"), root + "/real/inner");
    // A parent that does not exist cannot be resolved: the standardized path comes back.
    EXPECT_EQ(Paths::canonicalPath(root + "/missing//x/"), root + "/missing/x");
    EXPECT_EQ(Paths::canonicalPath("/"), "/");
}

TEST(Paths, AbbreviatingHomeOnlyOnAComponentBoundary) {
    const std::string& home = sharedHomeFolder();
    EXPECT_EQ(Paths::abbreviatingHome(home), "~");
    EXPECT_EQ(Paths::abbreviatingHome(home + "/Library/Caches"), "~/Library/Caches");
    EXPECT_EQ(Paths::abbreviatingHome(home + "b/Library"), home + "b/Library");
    EXPECT_EQ(Paths::abbreviatingHome("/Library/Caches"), "/Library/Caches");
    EXPECT_EQ(Paths::abbreviatingHome(Paths::parentFolder(home)), Paths::parentFolder(home));
}

// Access is judged for the user the process runs as, so check it as an ordinary user.
TEST(Paths, ReadableAndWritableFollowTheEffectiveUser) {
    TempTree tree;
    const std::string readOnly = tree.makeFile("readonly", "x");
    const std::string writable = tree.makeFile("writable", "x");
    const std::string secret = tree.makeFile("secret", "x");
    chownTree(tree.root(), unprivilegedUid(), unprivilegedGid());
    ::chmod(readOnly.c_str(), 0444);
    ::chmod(writable.c_str(), 0644);
    ::chmod(secret.c_str(), 0000);
    const int status = runUnprivileged([&] {
        int failures = 0;
        failures += Paths::isReadable(readOnly) ? 0 : 1;
        failures += Paths::isWritable(readOnly) ? 2 : 0;
        failures += Paths::isWritable(writable) ? 0 : 4;
        failures += Paths::isReadable(secret) ? 8 : 0;
        failures += Paths::isReadable(tree.root() + "/missing") ? 16 : 0;
        return failures;
    });
    EXPECT_EQ(status, 0);
}
