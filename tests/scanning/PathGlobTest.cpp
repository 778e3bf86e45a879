#include "scanning/PathGlob.h"

#include "platform/Environment.h"
#include "support/FakeHome.h"
#include "support/PathQueries.h"
#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <dirent.h>
#include <pwd.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Paths = std::vector<std::string>;

// Entry names of a folder in the order the file system lists them.
Paths listing(const std::string& folder) {
    Paths names;
    DIR* dir = ::opendir(folder.c_str());
    if (!dir)
        return names;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    ::closedir(dir);
    return names;
}

// `folder/name + suffix` for every listed name in `keep`, in listing order.
Paths inListingOrder(const std::string& folder, const std::set<std::string>& keep,
                     const std::string& suffix = {}) {
    Paths paths;
    for (const std::string& name : listing(folder))
        if (keep.contains(name))
            paths.push_back(folder + "/" + name + suffix);
    return paths;
}

// The home folder is read once per process; a fake home only takes effect when it
// is the first thing the process asks for.
#define REQUIRE_FAKE_HOME(home)                                                                              \
    if (Environment::homeFolder() != (home).home())                                                          \
    GTEST_SKIP() << "home folder already read in this process"

} // namespace

TEST(PathGlob, ExpandsContainerCachesForEveryListedEntryIncludingHiddenOnes) {
    FakeHome home;
    REQUIRE_FAKE_HOME(home);
    for (const char* container : {"com.example.one", ".hidden.container", "com.example.two", "zz.last"})
        home.makeDir(std::string("Library/Containers/") + container + "/Data/Library/Caches");
    home.makeDir("Library/Containers/com.example.nocaches/Data/Library");
    home.makeFile("Library/Containers/stray-file");
    const std::string containers = home.path("Library/Containers");

    const Paths expanded = PathGlob::expand("~/Library/Containers/*/Data/Library/Caches");
    EXPECT_EQ(expanded, inListingOrder(containers,
                                       {"com.example.one", ".hidden.container", "com.example.two", "zz.last"},
                                       "/Data/Library/Caches"));
    EXPECT_EQ(expanded.size(), 4u);

    EXPECT_EQ(PathGlob::expand("~"), Paths{home.home()});
    EXPECT_EQ(PathGlob::expand("~/"), Paths{home.home()});
    EXPECT_EQ(PathGlob::expand("~/Library/Containers/stray-file"), Paths{containers + "/stray-file"});
}

TEST(PathGlob, TrailingAndDoubledSlashesMakeNoDifference) {
    FakeHome home;
    REQUIRE_FAKE_HOME(home);
    home.makeDir("Library/Application Support/Editor/State");
    home.makeDir("Library/Application Support/.sync");
    home.makeFile("Library/Application Support/notes.txt", "n");
    const std::string support = home.path("Library/Application Support");

    const Paths withoutSlash = PathGlob::expand("~/Library/Application Support/*");
    EXPECT_EQ(withoutSlash, inListingOrder(support, {"Editor", ".sync", "notes.txt"}));
    EXPECT_EQ(PathGlob::expand("~/Library/Application Support/*/"), withoutSlash);
    EXPECT_EQ(PathGlob::expand("~//Library///Application Support/*//"), withoutSlash);
    EXPECT_EQ(PathGlob::expand(home.home() + "/Library/Application Support/*"), withoutSlash);
}

TEST(PathGlob, NamesNothingWhenAComponentIsMissing) {
    TempTree tree;
    tree.makeFile("file.txt", "f");
    tree.makeDir("folder/inner");

    EXPECT_TRUE(PathGlob::expand("/").empty());
    EXPECT_TRUE(PathGlob::expand("").empty());
    EXPECT_TRUE(PathGlob::expand("///").empty());
    EXPECT_TRUE(PathGlob::expand("/veltro-no-such-folder-7f3a/*/Caches").empty());
    EXPECT_TRUE(PathGlob::expand(tree.path("missing/folder/*")).empty());
    EXPECT_TRUE(PathGlob::expand(tree.path("folder/*/missing")).empty());
    // A file where a folder is expected.
    EXPECT_TRUE(PathGlob::expand(tree.path("file.txt/inner")).empty());
    EXPECT_TRUE(PathGlob::expand(tree.path("file.txt/*")).empty());
    EXPECT_TRUE(PathGlob::expand("~veltro-no-such-user-7f3a/Library").empty());
    EXPECT_EQ(PathGlob::expand(tree.path("folder/*")), Paths{tree.path("folder/inner")});
}

TEST(PathGlob, ReturnsDanglingSymbolicLinks) {
    TempTree tree;
    const std::string dangling = tree.makeSymlink("parent/dangling", tree.path("nowhere"));
    tree.makeFile("parent/file", "f");

    EXPECT_EQ(PathGlob::expand(dangling), Paths{dangling});
    EXPECT_EQ(PathGlob::expand(tree.path("parent/*")),
              inListingOrder(tree.path("parent"), {"dangling", "file"}));
    EXPECT_TRUE(PathGlob::expand(dangling + "/inner").empty());
}

TEST(PathGlob, HonoursBracketExpressionsAndQuestionMarks) {
    TempTree tree;
    for (const char* name : {"a1", "a2", "b1", ".a3", "[x]", "c10"})
        tree.makeFile(std::string("names/") + name);
    const std::string folder = tree.path("names");
    const auto expand = [&](const std::string& component) {
        return PathGlob::expand(folder + "/" + component);
    };

    EXPECT_EQ(expand("[ab]1"), inListingOrder(folder, {"a1", "b1"}));
    EXPECT_EQ(expand("[!a]*"), inListingOrder(folder, {"b1", ".a3", "[x]", "c10"}));
    EXPECT_EQ(expand("?1"), inListingOrder(folder, {"a1", "b1"}));
    EXPECT_EQ(expand("a?"), inListingOrder(folder, {"a1", "a2"}));
    EXPECT_EQ(expand("c1[0-9]"), inListingOrder(folder, {"c10"}));
    EXPECT_EQ(expand("*"), inListingOrder(folder, {"a1", "a2", "b1", ".a3", "[x]", "c10"}));
    EXPECT_EQ(expand(".*"), inListingOrder(folder, {".a3"}));
    // A bracket makes the component a pattern, so "[x]" names "x", not itself.
    EXPECT_TRUE(expand("[x]").empty());
    EXPECT_EQ(expand("[[]x]"), inListingOrder(folder, {"[x]"}));
}

TEST(PathGlob, KeepsListingOrderAcrossComponentsWithoutRemovingDuplicates) {
    TempTree tree;
    for (const char* outer : {"p", "q", "r"})
        for (const char* inner : {"1", "2", "3"})
            tree.makeDir(std::string("top/") + outer + "/" + inner);
    const std::string top = tree.path("top");

    Paths expected;
    for (const std::string& outer : listing(top))
        for (const std::string& inner : listing(top + "/" + outer))
            expected.push_back(top + "/" + outer + "/" + inner);
    EXPECT_EQ(PathGlob::expand(top + "/*/*"), expected);

    // Three spellings of the same folder stay three results.
    const Paths parents = PathGlob::expand(top + "/*/..");
    EXPECT_EQ(parents, inListingOrder(top, {"p", "q", "r"}, "/.."));
}

TEST(PathGlob, ExpandsAnotherUsersHomeFolder) {
    const passwd* root = ::getpwuid(0);
    ASSERT_NE(root, nullptr);
    const std::string name = root->pw_name;
    std::string home = root->pw_dir;
    while (home.size() > 1 && home.back() == '/')
        home.pop_back();
    const Paths expected = exists(home) && home != "/" ? Paths{home} : Paths{};

    EXPECT_EQ(PathGlob::expand("~" + name), expected);
    EXPECT_EQ(PathGlob::expand("~" + name + "/"), expected);
    EXPECT_TRUE(PathGlob::expand("~" + name + "/veltro-no-such-entry-7f3a").empty());
}

TEST(PathGlob, SkipsFoldersThatCannotBeListed) {
    TempTree tree;
    tree.makeFile("top/open/x");
    tree.makeFile("top/locked/x");
    tree.makeFile("top/locked/y");
    ASSERT_EQ(::chmod(tree.path("top/locked").c_str(), 0), 0);
    const Paths expected{tree.path("top/open/x")};

    EXPECT_EQ(runUnprivileged([&] { return PathGlob::expand(tree.path("top/*/*")) == expected ? 0 : 1; }), 0);
    if (::geteuid() == 0) { // root lists both, so the child's narrower view came from the permissions
        EXPECT_EQ(PathGlob::expand(tree.path("top/*/*")).size(), 3u);
    }
}
