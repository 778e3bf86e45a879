#include "systemdata/SystemDataAnalyzer.h"

#include "SystemDataTesting.h"
#include "catalogue/LinuxCommands.h"
#include "platform/Text.h"
#include "support/SnapshotStandIn.h"
#include "systemdata/SystemDataAreas.h"
#include "systemdata/SystemDataCatalog.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

SystemDataEntry::Action userAction(std::string shell) {
    return {
        .title = "Try", .shell = std::move(shell), .admin = false, .risk = Risk::caution, .confirm = "Sure?"};
}

const SystemDataEntry& area(const std::string& id) {
    for (const SystemDataEntry& entry : SystemDataAreas::entries())
        if (entry.id == id)
            return entry;
    throw std::out_of_range(id);
}

// A stand-in tool on the children's search path that notes each call in `log`.
void installNoting(const std::string& log, const std::string& tool, const std::string& body = {}) {
    sharedHome().installTool(tool, "echo " + tool + " \"$@\" >> " + shellQuote(log) + "\n" + body);
}

std::string takeLog(const std::string& log) {
    const std::string text = exists(log) ? readFile(log) : "";
    ::unlink(log.c_str());
    return text;
}

} // namespace

TEST(SystemDataPerform, UserActionMessages) {
    sharedHome();
    TempTree tree;
    const std::string made = tree.path("made");
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("touch " + shellQuote(made))), std::nullopt);
    EXPECT_TRUE(exists(made));
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("printf ' \\n\\t \\n' >&2; exit 4")), "Failed (exit 4)");
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("printf '\\n  no such runtime \\n' >&2; exit 1")),
              "no such runtime");
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("printf '%1000s' '' | tr ' ' x >&2; exit 1")),
              std::string(300, 'x'));
    EXPECT_EQ(SystemDataAnalyzer::perform(userAction("echo 'error -128' >&2; exit 1")),
              "Authentication was cancelled");
}

// Each area's action runs the Linux command of the same meaning: the administrator's
// steps go to the helper as one shell text (answered here, as root would run this
// machine's own tools), the user's own steps run as the user.
TEST(SystemDataPerform, ActionsRunTheirLinuxCommands) {
    const std::string log = sharedHome().path("calls.log");
    struct Case {
        std::string id;
        std::vector<std::string> tools;
        std::string userCalls;
        std::string adminScript;
        Shell::Output adminAnswer;
        std::optional<std::string> message;
    };
    const Shell::Output done{0, "", ""};
    const std::vector<Case> cases{
        {"unifiedlogs",
         {"journalctl"},
         "",
         "journalctl --rotate && journalctl --vacuum-time=1s",
         done,
         std::nullopt},
        {"spotlight",
         {"updatedb", "tracker3", "balooctl"},
         "tracker3 reset --filesystem\nbalooctl purge\n",
         "updatedb",
         done,
         std::nullopt},
        // The system's runtimes could not go; the user's are still removed.
        {"simruntimes",
         {"flatpak"},
         "flatpak uninstall --user --unused -y\n",
         "flatpak uninstall --system --unused -y",
         {1, "", " error: not allowed \n"},
         "error: not allowed"},
        // A dismissed password dialog: the user's own steps do not run either.
        {"spotlight",
         {},
         "",
         "updatedb",
         {1, "", "execution error: User canceled. (-128)"},
         "Authentication was cancelled"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        for (const std::string& tool : c.tools)
            installNoting(log, tool);
        AuthorizationToolRecorder recorder{answering(c.adminAnswer)};
        EXPECT_EQ(SystemDataAnalyzer::perform(*area(c.id).action), c.message);
        EXPECT_EQ(takeLog(log), c.userCalls);
        ASSERT_EQ(recorder.calls().size(), 1u);
        EXPECT_EQ(recorder.calls()[0].script, "#!/bin/sh\n" + c.adminScript + "\n");
        EXPECT_EQ(recorder.calls()[0].prompt,
                  "Veltro needs administrator privileges to: " + area(c.id).action->title);
        EXPECT_EQ(recorder.calls()[0].timeout, 1800);
    }
}

// Snapshots are Snapper's where it has a configuration for the root file system, else
// Timeshift's: the count and the deletion, run here as the user with stand-ins.
TEST(SystemDataPerform, SnapshotsAreSnappersWithARootConfigurationElseTimeshifts) {
    const std::string log = sharedHome().path("calls.log");
    const std::string count =
        SystemDataAnalyzer::measuredEntries(SystemDataAreas::entries()).front().countCommand;
    const std::string deletion = LinuxCommands::find(area("tm").action->shell)->steps.front().shell;
    // Snapper's count is the scanner's snapshot probe, tested there.
    installNoting(log, "snapper", snapperWithSnapshots(2));
    EXPECT_EQ(Shell::run(deletion, 10).status, 0);
    EXPECT_EQ(takeLog(log), "snapper -c root list\nsnapper -c root --csvout list --columns number\n"
                            "snapper -c root delete 1\nsnapper -c root delete 2\n");

    installNoting(log, "snapper", "exit 1");
    installNoting(log, "timeshift",
                  "[ \"$1\" = --list ] && printf 'Num     Name                 Tags  Description\\n------\\n"
                  "0    >  2024-05-01_10-00-01  O\\n1    >  2024-05-02_10-00-01  D\\n'; exit 0");
    EXPECT_EQ(Text::trimmed(Shell::run(count, 10).standardOutput), "2");
    takeLog(log);
    EXPECT_EQ(Shell::run(deletion, 10).status, 0);
    EXPECT_EQ(takeLog(log), "snapper -c root list\ntimeshift --delete-all --scripted --yes\n");
}

// What cannot run here is refused with the reason, never reported as done.
TEST(SystemDataPerform, WithoutItsToolAnActionRunsNothingAndSaysWhy) {
    sharedHome();
    if (LinuxCommands::isInstalled("flatpak", Shell::path()))
        GTEST_SKIP() << "this machine has flatpak";
    AuthorizationToolRecorder recorder{answering({0, "", ""})};
    EXPECT_EQ(SystemDataAreas::unavailableReason(area("simruntimes")), "flatpak is not installed");
    EXPECT_EQ(SystemDataAnalyzer::perform(*area("simruntimes").action), "flatpak is not installed");

    // A swap file has no action here, only its note; the catalogue's own is refused with it.
    EXPECT_FALSE(area("vm").action.has_value());
    EXPECT_EQ(SystemDataAnalyzer::perform(*SystemDataCatalog::entries()[1].action), area("vm").protectedNote);
    EXPECT_TRUE(recorder.calls().empty());
}
