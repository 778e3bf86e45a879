// System Data in the model with stand-in authorisation tools: one that runs the
// script as this user, one that reports a dismissed password dialog.

#include "ModelTestSupport.h"

#include "catalogue/LinuxCommands.h"
#include "platform/ShellQuote.h"
#include "support/AuthorizationToolStandIn.h"
#include "systemdata/SystemDataAreas.h"

#include <optional>

using namespace ModelTest;

namespace {

const Shell::Output dismissed{1, "", "-128: the dialog was dismissed"};

SystemDataEntry entryWithAction(std::string id, std::string shell, bool admin) {
    SystemDataEntry entry;
    entry.id = std::move(id);
    entry.title = "Test Area " + entry.id;
    entry.action = SystemDataEntry::Action{};
    entry.action->title = "Tidy " + entry.id;
    entry.action->shell = std::move(shell);
    entry.action->admin = admin;
    return entry;
}

} // namespace

TEST(SystemDataModel, AnalysesOnceAtATimeAndACancelledOneRestoresTheReport) {
    FakeHome home;
    home.makeFileOfSize("Library/Mail/V10/inbox.mbox", 200'000);
    std::optional<AuthorizationToolRecorder> tool(std::in_place, runScriptAsCurrentUser);
    AppModel model;
    SignalLog notified(model);

    model.analyzeSystemData();
    model.analyzeSystemData();
    ASSERT_TRUE(model.systemAnalyzing());
    ASSERT_TRUE(waitFor([&] { return !model.systemAnalyzing(); }));
    ASSERT_TRUE(waitForWorkers(model));
    EXPECT_EQ(tool->calls().size(), 1u);
    EXPECT_EQ(notified.count("systemAnalyzingChanged"), 2);
    ASSERT_TRUE(model.systemReport().has_value());
    const SystemDataReport first = *model.systemReport();
    EXPECT_GE(first.sizes.at("mailmsg"), 200'000);
    EXPECT_TRUE(model.systemSnapshotsMeasured());
    EXPECT_TRUE(model.systemMessage().isEmpty());

    // The second analysis starts from an empty report and, cancelled, puts the first back.
    tool.emplace(answering(dismissed));
    model.analyzeSystemData();
    ASSERT_TRUE(model.systemReport().has_value());
    EXPECT_TRUE(model.systemReport()->sizes.empty());
    EXPECT_EQ(model.systemReport()->snapshotCount, 0);
    EXPECT_FALSE(model.systemSnapshotsMeasured());
    ASSERT_TRUE(waitFor([&] { return !model.systemAnalyzing(); }));
    EXPECT_EQ(model.systemReport(), std::optional<SystemDataReport>(first));
    EXPECT_EQ(model.systemMessage(), QStringLiteral("Authentication was cancelled"));
    EXPECT_TRUE(model.systemSnapshotsMeasured());
    EXPECT_EQ(tool->calls().size(), 1u);
}

TEST(SystemDataModel, ActionsRunOneAtATimeAndReportTheSpaceFreed) {
    FakeHome home;
    AppModel model;
    // Writes 64 MB: the free space goes down, which is reported as nothing freed.
    const SystemDataEntry filling = entryWithAction(
        "fill",
        "dd if=/dev/zero of=" + shellQuote(home.path("fill.bin")) + " bs=1M count=64 conv=fsync 2>/dev/null",
        false);
    SystemDataEntry without = filling;
    without.id = "plain";
    without.action.reset();

    SignalLog notified(model);
    model.runSystemAction(without);
    EXPECT_EQ(notified.total(), 0);
    // Nor does an action whose tool is not installed, until it is.
    const SystemDataEntry& runtimes = SystemDataAreas::entries()[4];
    if (!LinuxCommands::isInstalled("flatpak", Shell::path())) {
        model.runSystemAction(runtimes);
        EXPECT_EQ(notified.total(), 0);
        EXPECT_EQ(model.systemEntries()[4].toMap()["unavailableNote"], "flatpak is not installed");
        home.installTool("flatpak", "exit 0");
        model.refreshEnvironment();
        EXPECT_EQ(notified.count("systemToolsChanged"), 1);
        EXPECT_EQ(model.systemEntries()[4].toMap()["unavailableNote"], "");
        notified.clear();
    }

    model.runSystemAction(filling);
    EXPECT_EQ(model.systemRunningEntry(), QStringLiteral("fill"));
    notified.clear();
    model.runSystemAction(entryWithAction("other", "true", false));
    EXPECT_EQ(notified.total(), 0);
    EXPECT_EQ(model.systemRunningEntry(), QStringLiteral("fill"));

    ASSERT_TRUE(waitFor([&] { return model.systemRunningEntry().isEmpty(); }));
    EXPECT_EQ(model.systemMessage(),
              QStringLiteral("Tidy fill completed — 0 KB more free space (re-analyze to update sizes)"));

    // A failure names the area, then the reason.
    const ScopedAuthorizationTool tool(answering(dismissed));
    model.runSystemAction(entryWithAction("locked", "true", true));
    EXPECT_TRUE(model.systemMessage().isEmpty());
    ASSERT_TRUE(waitFor([&] { return model.systemRunningEntry().isEmpty(); }));
    EXPECT_EQ(model.systemMessage(), QStringLiteral("Test Area locked: Authentication was cancelled"));
    ASSERT_TRUE(waitForWorkers(model));
}
