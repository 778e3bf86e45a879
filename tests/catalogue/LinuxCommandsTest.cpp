#include "catalogue/LinuxCommands.h"

#include "support/TempTree.h"

#include <gtest/gtest.h>
#include <unistd.h>

// A tool counts as installed only as an executable file in a folder of the search
// path; the working folder an empty entry would mean is never searched.
TEST(LinuxCommands, ToolsAreFoundOnlyAsExecutableFilesOnTheSearchPath) {
    TempTree tree;
    const std::string bin = tree.makeDir("bin");
    const std::string other = tree.makeDir("other");
    tree.makeScript("other/tool", "exit 0");
    tree.makeFile("bin/plain", "not executable");
    tree.makeDir("bin/folder");
    const std::string path = bin + "::" + other;
    EXPECT_TRUE(LinuxCommands::isInstalled("tool", path));
    EXPECT_TRUE(LinuxCommands::isInstalled(other + "/tool", ""));
    for (const std::string tool : {"plain", "folder", "missing", ""})
        EXPECT_FALSE(LinuxCommands::isInstalled(tool, path)) << tool;
    ASSERT_EQ(::chdir(other.c_str()), 0);
    EXPECT_FALSE(LinuxCommands::isInstalled("tool", bin + "::"));

    // A command offers the steps whose tool is there and otherwise says what is missing.
    const LinuxCommand command{{{"a", true, {"missing", "tool"}}, {"b", false, {"plain"}}}, {}};
    EXPECT_EQ(LinuxCommands::installedSteps(command, path), std::vector{command.steps[0]});
    EXPECT_EQ(LinuxCommands::unavailableReason(command, path), "");
    EXPECT_EQ(LinuxCommands::unavailableReason(command, bin),
              "None of these is installed: missing, tool, plain");
    EXPECT_EQ(LinuxCommands::unavailableReason({{{"b", false, {"plain"}}}, {}}, bin),
              "plain is not installed");
    EXPECT_EQ(LinuxCommands::unavailableReason({{}, "Nothing here"}, path), "Nothing here");
}
