#include "systemdata/SystemDataAnalyzer.h"

#include "SystemDataTesting.h"
#include "catalogue/LinuxCommands.h"
#include "support/SnapshotStandIn.h"
#include "systemdata/SystemDataAreas.h"
#include "systemdata/SystemDataCatalog.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

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

namespace {

const SystemDataEntry& area(const std::string& id) {
    for (const SystemDataEntry& entry : SystemDataAreas::entries())
        if (entry.id == id)
            return entry;
    throw std::out_of_range(id);
}

} // namespace

// Each area's action runs the Linux command of the same meaning: the administrator's
// steps in one script, the user's own steps as the user.
TEST(SystemDataPerform, ActionsRunTheirLinuxCommands) {
    // Stand-ins on the children's search path note every call in one log.
    const std::string log = sharedHome().path("calls.log");
    struct Case {
        std::string id;
        std::vector<std::pair<std::string, std::string>> standIns; // tool, body after the note
        std::string calls;
        std::string adminScript;
        std::optional<std::string> message;
    };
    const std::vector<Case> cases{
        {"unifiedlogs",
         {{"journalctl", ""}},
         "journalctl --rotate\njournalctl --vacuum-time=1s\n",
         "journalctl --rotate && journalctl --vacuum-time=1s",
         std::nullopt},
        {"spotlight",
         {{"updatedb", ""}, {"tracker3", ""}, {"balooctl", ""}},
         "updatedb\ntracker3 reset --filesystem\nbalooctl purge\n",
         "updatedb",
         std::nullopt},
        // The system's runtimes could not go; the user's are still removed.
        {"simruntimes",
         {{"flatpak", "[ \"$2\" = --system ] && { echo ' error: not allowed ' >&2; exit 1; }; exit 0"}},
         "flatpak uninstall --system --unused -y\nflatpak uninstall --user --unused -y\n",
         "flatpak uninstall --system --unused -y",
         "error: not allowed"},
        {"tm",
         {{"snapper", snapperWithSnapshots(2)}},
         "snapper -c root list\nsnapper -c root --csvout list --columns number\nsnapper -c root delete 1\n"
         "snapper -c root delete 2\n",
         LinuxCommands::find(area("tm").action->shell)->steps.front().shell,
         std::nullopt},
        // Without a Snapper configuration for the root file system, Timeshift's.
        {"tm",
         {{"snapper", "exit 1"}, {"timeshift", ""}},
         "snapper -c root list\ntimeshift --delete-all --scripted --yes\n",
         LinuxCommands::find(area("tm").action->shell)->steps.front().shell,
         std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id + " with " + c.standIns.front().first);
        for (const auto& [tool, body] : c.standIns)
            sharedHome().installTool(tool, "echo " + tool + " \"$@\" >> " + shellQuote(log) + "\n" + body);
        AuthorizationToolRecorder recorder{realScriptRunner()};
        EXPECT_EQ(SystemDataAnalyzer::perform(*area(c.id).action), c.message);
        EXPECT_EQ(readFile(log), c.calls);
        ::unlink(log.c_str());
        ASSERT_EQ(recorder.calls().size(), 1u);
        EXPECT_EQ(recorder.calls()[0].script, "#!/bin/sh\n" + c.adminScript + "\n");
        EXPECT_EQ(recorder.calls()[0].prompt,
                  "Veltro needs administrator privileges to: " + area(c.id).action->title);
    }
}

// What cannot run here is refused with the reason, never reported as done.
TEST(SystemDataPerform, WithoutItsToolAnActionRunsNothingAndSaysWhy) {
    sharedHome();
    if (LinuxCommands::isInstalled("flatpak", Shell::path()))
        GTEST_SKIP() << "this machine has flatpak";
    AuthorizationToolRecorder recorder{answering({0, "", ""})};
    EXPECT_EQ(SystemDataAreas::unavailableReason(area("simruntimes")), "flatpak is not installed");
    EXPECT_EQ(SystemDataAnalyzer::perform(*area("simruntimes").action), "flatpak is not installed");

    // A swap file has no action here, only its note; the catalogue's own is refused too.
    const std::string swapNote =
        "In use by the system as swap — resize or remove it with your distribution's tools";
    EXPECT_FALSE(area("vm").action.has_value());
    EXPECT_EQ(area("vm").protectedNote, swapNote);
    EXPECT_EQ(SystemDataAnalyzer::perform(*SystemDataCatalog::entries()[1].action), swapNote);
    EXPECT_TRUE(recorder.calls().empty());
}
