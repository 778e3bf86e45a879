#include "systemdata/SystemDataAnalyzer.h"

#include "SystemDataTesting.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

SystemDataEntry::Action userAction(std::string shell) {
    return {
        .title = "Try", .shell = std::move(shell), .admin = false, .risk = Risk::caution, .confirm = "Sure?"};
}

} // namespace

TEST(SystemDataPerform, UserActionMessages) {
    sharedHome();
    TempTree tree;
    const std::string made = tree.path("made");
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("touch " + shellQuote(made))), std::nullopt);
    EXPECT_TRUE(exists(made));
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("exit 2")), "Failed (exit 2)");
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("printf ' \\n\\t \\n' >&2; exit 4")), "Failed (exit 4)");
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("printf '\\n  no such runtime \\n' >&2; exit 1")),
              "no such runtime");
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("printf '%1000s' '' | tr ' ' x >&2; exit 1")),
              std::string(300, 'x'));
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("echo 'error -128' >&2; exit 1")),
              "Authentication was cancelled");
}

TEST(SystemDataPerform, AdminActionGoesThroughAuthorization) {
    sharedHome();
    const SystemDataEntry::Action action{"Delete sleepimage", "echo gone; echo 'not here' >&2; exit 5", true,
                                         Risk::caution, "Sure?"};
    {
        AuthorizationToolRecorder recorder{answering({1, "", "execution error: User canceled. (-128)"})};
        EXPECT_EQ(SystemDataAnalyzer::perform(action), "Authentication was cancelled");
        ASSERT_EQ(recorder.calls().size(), 1u);
        EXPECT_EQ(recorder.calls()[0].script, "#!/bin/sh\necho gone; echo 'not here' >&2; exit 5\n");
        EXPECT_EQ(recorder.calls()[0].prompt, "Veltro needs administrator privileges to: Delete sleepimage");
        EXPECT_EQ(recorder.calls()[0].timeout, 1800);
    }

    // Really run: the script's own failure comes back as its error text.
    ScopedAuthorizationTool tool(realScriptRunner());
    EXPECT_EQ(SystemDataAnalyzer::perform(action), "not here");
    TempTree tree;
    const std::string made = tree.path("made by admin");
    EXPECT_EQ(
        SystemDataAnalyzer::perform({"Make", "touch " + shellQuote(made), true, Risk::caution, "Sure?"}),
        std::nullopt);
    EXPECT_TRUE(exists(made));
}
