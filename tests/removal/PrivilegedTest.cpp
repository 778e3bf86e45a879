#include "removal/Privileged.h"

#include "platform/Environment.h"
#include "support/AuthorizationToolStandIn.h"
#include "support/FakeHome.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <string>
#include <sys/stat.h>
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

const std::regex
    scriptName("korvane-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\.sh");

} // namespace

TEST(PrivilegedText, AppleScriptAndOsascriptCommandLine) {
    EXPECT_EQ(
        Privileged::appleScript("/tmp/korvane-1.sh", "Veltro wants to clean."),
        "do shell script \"/bin/sh \" & quoted form of \"/tmp/korvane-1.sh\" with prompt \"Veltro wants to "
        "clean.\" with administrator privileges");
    EXPECT_EQ(
        Privileged::osascriptCommand("/tmp/korvane-1.sh", "Veltro wants to clean."),
        "/usr/bin/osascript -e 'do shell script \"/bin/sh \" & quoted form of \"/tmp/korvane-1.sh\" with "
        "prompt \"Veltro wants to clean.\" with administrator privileges'");

    // Double quotes in the prompt would end the AppleScript string early.
    EXPECT_EQ(
        Privileged::appleScript("/t/k.sh", "Remove \"Caches\" now"),
        "do shell script \"/bin/sh \" & quoted form of \"/t/k.sh\" with prompt \"Remove 'Caches' now\" with "
        "administrator privileges");

    // Single quotes in path and prompt survive the shell quoting of the command line.
    EXPECT_EQ(
        Privileged::osascriptCommand("/tmp/it's/k.sh", "Veltro's \"clean\""),
        "/usr/bin/osascript -e 'do shell script \"/bin/sh \" & quoted form of \"/tmp/it'\\''s/k.sh\" with "
        "prompt \"Veltro'\\''s '\\''clean'\\''\" with administrator privileges'");
}

TEST_F(PrivilegedTest, ScriptFileIsPrivateAndRemovedAfterTheRun) {
    std::string seenPath;
    std::string seenPrompt;
    std::string seenContent;
    mode_t seenMode = 0;
    double seenTimeout = 0;
    Privileged::setAuthorizationTool([&](const std::string& path, const std::string& prompt, double timeout) {
        seenPath = path;
        seenPrompt = prompt;
        seenTimeout = timeout;
        seenContent = readFile(path);
        struct stat status {};
        if (::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode))
            seenMode = status.st_mode & 07777;
        return Shell::Output{0, "ran\n", ""};
    });
    const std::string script = "#!/bin/sh\necho 'grüße'\n";
    const auto result = Privileged::run(script, "Say \"hello\"", 42.5);

    EXPECT_EQ(result, (Shell::Output{0, "ran\n", ""}));
    EXPECT_EQ(seenPath.substr(0, home.tmp().size() + 1), home.tmp() + "/");
    EXPECT_TRUE(std::regex_match(seenPath.substr(home.tmp().size() + 1), scriptName)) << seenPath;
    EXPECT_EQ(seenContent, script);
    EXPECT_EQ(seenMode, 0700u);
    EXPECT_EQ(seenPrompt, "Say 'hello'");
    EXPECT_EQ(seenTimeout, 42.5);
    EXPECT_TRUE(entriesOf(home.tmp()).empty());
}

TEST_F(PrivilegedTest, ScriptFileIsRemovedWhenTheToolFails) {
    bool fileExisted = false;
    Privileged::setAuthorizationTool([&](const std::string& path, const std::string&, double) {
        fileExisted = ::access(path.c_str(), F_OK) == 0;
        return Shell::Output{1, "", "execution error: something broke"};
    });
    const auto failed = Privileged::run("#!/bin/sh\nexit 0\n", "Prompt", 5);
    EXPECT_TRUE(fileExisted);
    EXPECT_EQ(failed, (Shell::Output{1, "", "execution error: something broke"}));
    EXPECT_TRUE(entriesOf(home.tmp()).empty());

    // A dismissed dialog comes back unchanged, recognisable by its "-128".
    Privileged::setAuthorizationTool(
        answering({126, "", "-128: Error executing command as another user: Request dismissed"}));
    const auto dismissed = Privileged::run("#!/bin/sh\nexit 0\n", "Prompt", 5);
    EXPECT_NE(dismissed.status, 0);
    EXPECT_NE(dismissed.standardError.find("-128"), std::string::npos);
    EXPECT_TRUE(entriesOf(home.tmp()).empty());
}

TEST_F(PrivilegedTest, UnwritableTemporaryFolderRunsNothing) {
    // The fake temporary folder belongs to the suite's user and is closed to others.
    ASSERT_EQ(::chmod(home.tmp().c_str(), 0755), 0);
    const int code = runUnprivileged([] {
        bool toolRan = false;
        Privileged::setAuthorizationTool([&](const std::string&, const std::string&, double) {
            toolRan = true;
            return Shell::Output{};
        });
        const auto result = Privileged::run("#!/bin/sh\n", "Prompt", 5);
        if (toolRan)
            return 10;
        if (result != Shell::Output{-1, "", "Could not write helper script: Permission denied"})
            return 11;
        return 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_TRUE(entriesOf(home.tmp()).empty());
}

TEST_F(PrivilegedTest, PlatformToolRunsTheScriptAsRoot) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "runs the script directly only with root rights";
    // "$0" is the script file itself: its mode is checked while it runs.
    const auto result =
        Privileged::run("#!/bin/sh\nid -u\nstat -c %a \"$0\"\necho oops >&2\nexit 4\n", "Prompt", 30);
    EXPECT_EQ(result, (Shell::Output{4, "0\n700\n", "oops\n"}));
    EXPECT_TRUE(entriesOf(home.tmp()).empty());
}

TEST_F(PrivilegedTest, PkexecOutcomes) {
    const std::string script = home.tree().makeFile("script.sh", "#!/bin/sh\necho as-admin\nexit 3\n");

    const auto missing = Privileged::runThroughPkexec(home.tree().path("no-such-pkexec"), script, 5);
    EXPECT_EQ(missing.status, 127);
    EXPECT_NE(missing.standardError.find("pkexec is not installed"), std::string::npos);

    // Stand-ins for pkexec: one that authorises and runs its arguments, one whose
    // dialog is dismissed, one without an authentication agent.
    const std::string granting = home.tree().makeFile("granting", "#!/bin/sh\nexec \"$@\"\n");
    const std::string dismissing = home.tree().makeFile(
        "dismissing",
        "#!/bin/sh\necho 'Error executing command as another user: Request dismissed' >&2\nexit 126\n");
    const std::string noAgent =
        home.tree().makeFile("no-agent", "#!/bin/sh\necho 'Error executing command as another user: No "
                                         "authentication agent found.' >&2\nexit 127\n");
    for (const std::string& tool : {granting, dismissing, noAgent})
        ASSERT_EQ(::chmod(tool.c_str(), 0755), 0);

    EXPECT_EQ(Privileged::runThroughPkexec(granting, script, 10), (Shell::Output{3, "as-admin\n", ""}));
    const auto dismissed = Privileged::runThroughPkexec(dismissing, script, 10);
    EXPECT_EQ(dismissed.status, 126);
    EXPECT_EQ(dismissed.standardError, "-128: Error executing command as another user: Request dismissed\n");
    EXPECT_EQ(Privileged::runThroughPkexec(noAgent, script, 10),
              (Shell::Output{127, "",
                             "Error executing command as another user: No authentication agent found.\n"}));
}

TEST_F(PrivilegedTest, RealPkexecWithoutAuthorisationRunsNothing) {
    if (::geteuid() != 0 || ::access("/usr/bin/pkexec", X_OK) != 0)
        GTEST_SKIP() << "needs root (to drop to another user) and an installed pkexec";
    // Without an agent that can ask the user, pkexec refuses; the script never runs.
    const std::string marker = home.tree().path("ran");
    ASSERT_EQ(::chmod(home.tmp().c_str(), 0777), 0);
    const int code = runUnprivileged([&] {
        const auto started = std::chrono::steady_clock::now();
        const auto result = Privileged::run("#!/bin/sh\ntouch '" + marker + "'\n", "Prompt", 20);
        if (std::chrono::steady_clock::now() - started > std::chrono::seconds(15))
            return 10;
        if (result.status == 0 || result.status == -1)
            return 11;
        return result.standardError.empty() ? 12 : 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_NE(::access(marker.c_str(), F_OK), 0);
    EXPECT_TRUE(entriesOf(home.tmp()).empty());
}
