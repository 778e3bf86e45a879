#include "removal/Privileged.h"

#include "platform/Environment.h"
#include "support/AuthorizationToolStandIn.h"
#include "support/FakeHome.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

namespace {

// Each test installs its own stand-in and the platform's tool comes back after it.
class PrivilegedTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (Environment::temporaryFolder() != home.tmp())
            GTEST_SKIP() << "the temporary folder was read earlier in this process; run this test on its own";
    }
    void TearDown() override { Privileged::setAuthorizationTool({}); }

    FakeHome home;
};

} // namespace

// Double quotes in the prompt would end the AppleScript string early; single quotes in
// path and prompt must survive the shell quoting of the command line.
TEST(PrivilegedText, AppleScriptAndOsascriptCommandLine) {
    EXPECT_EQ(
        Privileged::appleScript("/t/k.sh", "Remove \"Caches\" now"),
        "do shell script \"/bin/sh \" & quoted form of \"/t/k.sh\" with prompt \"Remove 'Caches' now\" with "
        "administrator privileges");
    EXPECT_EQ(
        Privileged::osascriptCommand("/tmp/it's/k.sh", "Veltro's \"clean\""),
        "/usr/bin/osascript -e 'do shell script \"/bin/sh \" & quoted form of \"/tmp/it'\\''s/k.sh\" with "
        "prompt \"Veltro'\\''s '\\''clean'\\''\" with administrator privileges'");
}

// A script reaches the shell only through the helper, as text on its standard input:
// no file is written for it, and its output and status come back as the script's.
TEST_F(PrivilegedTest, ScriptRunsThroughTheHelperAndLeavesNothingBehind) {
    AuthorizationToolRecorder recorder{realScriptRunner()};
    const std::string script = "#!/bin/sh\nid -u\nprintf '%s\\n' \"$0\"\necho oops >&2\nexit 4\n";
    const Shell::Output result = Privileged::run(script, "Say \"hello\"", 42.5);

    EXPECT_EQ(result, (Shell::Output{4, std::to_string(::geteuid()) + "\n/bin/sh\n", "oops\n"}));
    ASSERT_EQ(recorder.calls().size(), 1u);
    EXPECT_EQ(recorder.calls()[0].prompt, "Say 'hello'");
    EXPECT_EQ(recorder.calls()[0].timeout, 42.5);
    EXPECT_TRUE(entriesOf(home.tmp()).empty());
}

TEST_F(PrivilegedTest, HelperThatCannotBeFoundIsAReasonNotACrash) {
    AuthorizationToolRecorder recorder{realScriptRunner()};
    Privileged::setHelperPath(home.tree().path("no-such-helper"));
    const Shell::Output result = Privileged::run("#!/bin/sh\n", "Prompt", 5);
    EXPECT_EQ(result.status, -1);
    EXPECT_NE(result.standardError.find("veltro-helper"), std::string::npos) << result.standardError;
    EXPECT_TRUE(recorder.calls().empty());
}

TEST_F(PrivilegedTest, PkexecOutcomes) {
    Privileged::setHelperPath(VELTRO_TEST_HELPER);
    const Privileged::Request request{"run", WorkList::encodeRun("echo as-admin; exit 3"), "Prompt", 10};
    const Privileged::LineCallback noLines;
    const Privileged::Launch launch{{Privileged::helperPath(), "run"}, request, noLines};

    const auto missing = Privileged::runThroughPkexec(home.tree().path("no-such-pkexec"), launch);
    EXPECT_EQ(missing.status, 127);
    EXPECT_NE(missing.standardError.find("pkexec is not installed"), std::string::npos);

    // Stand-ins for pkexec: one that authorises and runs its arguments, one whose
    // dialog is dismissed (only that one is marked as a cancel), one without an
    // authentication agent.
    const std::string refused = "Error executing command as another user: ";
    const std::vector<std::pair<std::string, Shell::Output>> tools = {
        {"exec \"$@\"", {3, "as-admin\n", ""}},
        {"echo '" + refused + "Request dismissed' >&2; exit 126",
         {126, "", "-128: " + refused + "Request dismissed\n"}},
        {"echo '" + refused + "No authentication agent found.' >&2; exit 127",
         {127, "", refused + "No authentication agent found.\n"}}};
    for (size_t i = 0; i < tools.size(); ++i)
        EXPECT_EQ(Privileged::runThroughPkexec(
                      home.tree().makeScript("pkexec-" + std::to_string(i), tools[i].first), launch),
                  tools[i].second);
}

TEST_F(PrivilegedTest, RealPkexecWithoutAuthorisationRunsNothing) {
    if (::geteuid() != 0 || ::access("/usr/bin/pkexec", X_OK) != 0)
        GTEST_SKIP() << "needs root (to drop to another user) and an installed pkexec";
    // Without an agent that can ask the user, pkexec refuses; the helper never runs
    // (had it run as the user, the marker's folder would have let it write).
    const std::string marker = home.tree().makeDir("open", 0777) + "/ran";
    Privileged::setHelperPath(VELTRO_TEST_HELPER);
    const int code = runUnprivileged([&] {
        const auto result = Privileged::run("#!/bin/sh\ntouch '" + marker + "'\n", "Prompt", 20);
        if (result.status == 0 || result.status == -1)
            return 11;
        return result.standardError.empty() ? 12 : 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_NE(::access(marker.c_str(), F_OK), 0);
}
