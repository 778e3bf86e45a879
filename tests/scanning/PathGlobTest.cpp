#include "scanning/PathGlob.h"

#include "TreeFixtures.h"
#include "platform/Environment.h"
#include "support/FakeHome.h"
#include "support/PathQueries.h"
#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Paths = std::vector<std::string>;

// `folder/name + suffix` for every listed name in `keep`, in listing order.
Paths inListingOrder(const std::string& folder, const std::set<std::string>& keep,
                     const std::string& suffix = {}) {
    Paths paths;
    for (const std::string& name : namesInListingOrder(folder))
        if (keep.contains(name))
            paths.push_back(folder + "/" + name + suffix);
    return paths;
}

} // namespace

TEST(PathGlob, ExpandsHomeFoldersWhateverTheSlashes) {
    FakeHome home;
    // The home folder is read once per process; a fake home only takes effect when it
    // is the first thing the process asks for.
    if (Environment::homeFolder() != home.home())
        GTEST_SKIP() << "home folder already read in this process";
    for (const char* container : {"com.example.one", ".hidden.container", "com.example.two", "zz.last"})
        home.makeDir(std::string("Library/Containers/") + container + "/Data/Library/Caches");
    home.makeDir("Library/Containers/com.example.nocaches/Data/Library");
    home.makeFile("Library/Containers/stray-file");
    const std::string containers = home.path("Library/Containers");

    const Paths caches = PathGlob::expand("~/Library/Containers/*/Data/Library/Caches");
    EXPECT_EQ(caches, inListingOrder(containers,
                                     {"com.example.one", ".hidden.container", "com.example.two", "zz.last"},
                                     "/Data/Library/Caches"));
    for (const char* spelling :
         {"~/Library/Containers/*/Data/Library/Caches/", "~//Library///Containers/*//Data/Library/Caches//"})
        EXPECT_EQ(PathGlob::expand(spelling), caches) << spelling;
    EXPECT_EQ(PathGlob::expand(containers + "/*/Data/Library/Caches"), caches);
    EXPECT_EQ(PathGlob::expand("~"), Paths{home.home()});
    EXPECT_EQ(PathGlob::expand("~/"), Paths{home.home()});
    EXPECT_EQ(PathGlob::expand("~/Library/Containers/stray-file"), Paths{containers + "/stray-file"});

    // Another user's home folder, by name.
    const passwd* root = ::getpwuid(0);
    ASSERT_NE(root, nullptr);
    const std::string rootHome = root->pw_dir;
    const Paths expected = exists(rootHome) && rootHome != "/" ? Paths{rootHome} : Paths{};
    EXPECT_EQ(PathGlob::expand("~" + std::string(root->pw_name)), expected);
    EXPECT_EQ(PathGlob::expand("~" + std::string(root->pw_name) + "/"), expected);
    EXPECT_TRUE(PathGlob::expand("~" + std::string(root->pw_name) + "/veltro-no-such-entry-7f3a").empty());
}

TEST(PathGlob, WildcardsMatchEachListingInOrderWithoutRemovingDuplicates) {
    TempTree tree;
    for (const char* name : {"a1", "b1", ".a3", "[x]"})
        tree.makeFile(std::string("names/") + name);
    const std::string names = tree.path("names");
    for (const char* outer : {"p", "q", "r"})
        for (const char* inner : {"1", "2", "3"})
            tree.makeDir(std::string("top/") + outer + "/" + inner);
    const std::string top = tree.path("top");

    // "*" matches hidden names too; a bracket makes the component a pattern, so "[x]"
    // names "x", not itself.
    EXPECT_EQ(PathGlob::expand(names + "/*"), inListingOrder(names, {"a1", "b1", ".a3", "[x]"}));
    EXPECT_EQ(PathGlob::expand(names + "/?1"), inListingOrder(names, {"a1", "b1"}));
    EXPECT_TRUE(PathGlob::expand(names + "/[x]").empty());
    EXPECT_EQ(PathGlob::expand(names + "/[[]x]"), inListingOrder(names, {"[x]"}));
    // Classes, negated classes and ranges, as the rule table's patterns use them.
    EXPECT_EQ(PathGlob::expand(names + "/[ab]1"), inListingOrder(names, {"a1", "b1"}));
    EXPECT_EQ(PathGlob::expand(names + "/[!a]1"), inListingOrder(names, {"b1"}));
    EXPECT_EQ(PathGlob::expand(names + "/.[a-c][0-9]"), inListingOrder(names, {".a3"}));

    Paths nested;
    for (const std::string& outer : namesInListingOrder(top))
        for (const std::string& inner : namesInListingOrder(top + "/" + outer))
            nested.push_back(top + "/" + outer + "/" + inner);
    EXPECT_EQ(PathGlob::expand(top + "/*/*"), nested);
    // Three spellings of the same folder stay three results.
    EXPECT_EQ(PathGlob::expand(top + "/*/.."), inListingOrder(top, {"p", "q", "r"}, "/.."));
}

TEST(PathGlob, NamesNothingWhereAComponentIsMissingButKeepsDanglingLinks) {
    TempTree tree;
    tree.makeFile("file.txt", "f");
    tree.makeDir("folder/inner");
    const std::string dangling = tree.makeSymlink("parent/dangling", tree.path("nowhere"));
    tree.makeFile("parent/file", "f");

    for (const std::string& pattern :
         {std::string("/"), std::string(""), std::string("///"),
          std::string("/veltro-no-such-folder-7f3a/*/Caches"), tree.path("missing/folder/*"),
          tree.path("folder/*/missing"), tree.path("file.txt/inner"), tree.path("file.txt/*"),
          std::string("~veltro-no-such-user-7f3a/Library"), dangling + "/inner"})
        EXPECT_TRUE(PathGlob::expand(pattern).empty()) << pattern;
    EXPECT_EQ(PathGlob::expand(tree.path("folder/*")), Paths{tree.path("folder/inner")});
    EXPECT_EQ(PathGlob::expand(dangling), Paths{dangling});
    EXPECT_EQ(PathGlob::expand(tree.path("parent/*")),
              inListingOrder(tree.path("parent"), {"dangling", "file"}));
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
