// The System Data screen in the real window: before and after an analysis (run by a
// stand-in authorisation tool), a dismissed password dialog, the composition bar's
// order, and the confirmation of an action.

#include "WindowFixture.h"

#include "platform/ShellQuote.h"
#include "support/AuthorizationToolStandIn.h"
#include "support/PathQueries.h"
#include "support/SnapshotStandIn.h"
#include "ui/Format.h"

#include <algorithm>
#include <functional>

namespace {

// A swap file in use cannot be deleted: here it is among the areas the system manages.
const QStringList reducibleIDs{"tm", "unifiedlogs", "spotlight", "simruntimes"};
const QStringList managedIDs{"vm",      "vmdisks",    "folders",    "assets",
                             "dbother", "appsupport", "containers", "mailmsg"};

} // namespace

class SystemData : public WindowTest {
protected:
    void showScreen() {
        navigate("systemData");
        ASSERT_TRUE(
            UiHarness::waitFor([&] { return window()->findChild<QObject*>("systemDataView") != nullptr; }));
    }
    QString sizeText(const QString& id) { return text("systemSize_" + id); }
    bool actionEnabled(const QString& id) { return read("systemAction_" + id, "enabled").toBool(); }

    void clickOnScreen(const QString& name) {
        clickInScroller(QStringLiteral("systemDataScroller"), item(name));
    }
    bool analysisEnds() {
        return UiHarness::waitFor([&] { return !model().systemAnalyzing(); }, 60000);
    }
};

// Before any analysis; after one whose password dialog was dismissed; after one that
// runs the real script over the fake home and the mostly absent system folders; and
// after one the tool answers for the script: every area 100 KiB (the databases' line
// holds the logs too, which the report takes away), and two snapshots to delete.
TEST_F(SystemData, SizesAreUnknownUntilMeasuredThenShownAndEqualAreasKeepCatalogueOrder) {
    home().makeFileOfSize("Library/Mail/V10/inbox.mbox", 200'000);
    home().installTool("snapper", snapperWithSnapshots(0));
    int asked = 0;
    ScopedAuthorizationTool tool([&](const Privileged::Launch& launch) {
        ++asked;
        if (asked == 2)
            return runScriptAsCurrentUser(launch);
        return asked == 1 ? Shell::Output{1, "", "-128: the dialog was dismissed"}
                          : Shell::Output{0,
                                          "vm|100\nunifiedlogs|100\nspotlight|100\nsimruntimes|100\n"
                                          "vmdisks|100\nfolders|100\nassets|100\ndbother|200\n"
                                          "appsupport|100\ncontainers|100\nmailmsg|100\ntm|2\n",
                                          ""};
    });
    showScreen();
    EXPECT_FALSE(visible("systemMessage"));
    const auto expectUnmeasured = [&] {
        EXPECT_EQ(text("analyzeButton"), "Analyze");
        EXPECT_EQ(text("systemTotal"), "0 KB");
        EXPECT_FALSE(visible("compositionBar"));
        for (const QString& id : reducibleIDs + managedIDs)
            EXPECT_EQ(sizeText(id), "—") << id.toStdString();
    };
    expectUnmeasured();

    // Rows in catalogue order within their sections; the reason to keep hands off for
    // managed areas, the explanation and the action otherwise; an action whose tool is
    // not installed waits, saying which tool it needs.
    const QVariantList entries = model().systemEntries();
    ASSERT_EQ(entries.size(), reducibleIDs.size() + managedIDs.size());
    qreal lastY = -1;
    for (const QString& id : reducibleIDs + managedIDs) {
        const auto entry = std::find_if(entries.begin(), entries.end(), [&](const QVariant& e) {
                               return e.toMap()["id"] == id;
                           })->toMap();
        const bool actionable = reducibleIDs.contains(id);
        EXPECT_EQ(text("systemNote_" + id), entry[actionable ? "detail" : "protectedNote"].toString());
        EXPECT_EQ(visible("systemAction_" + id), actionable) << id.toStdString();
        const QString missing = entry["unavailableNote"].toString();
        if (actionable) {
            EXPECT_EQ(actionEnabled(id), missing.isEmpty()) << id.toStdString();
            EXPECT_EQ(text("systemUnavailableText_" + id), missing);
        }
        const qreal y = item("systemRow_" + id)->mapToScene(QPointF(0, 0)).y();
        EXPECT_GT(y, lastY) << id.toStdString();
        lastY = y;
    }
    // Only an area with a folder that exists can be shown in the file viewer.
    EXPECT_TRUE(visible("systemReveal_mailmsg"));
    EXPECT_FALSE(visible("systemReveal_vm"));

    clickOnScreen("analyzeButton");
    ASSERT_TRUE(analysisEnds());
    EXPECT_EQ(read("systemMessage", "text").toString(), "Authentication was cancelled");
    expectUnmeasured();

    clickOnScreen("analyzeButton");
    ASSERT_TRUE(model().systemAnalyzing());
    // At once: the busy label, and placeholders where nothing is measured yet.
    EXPECT_EQ(text("analyzeButton"), "Analyzing…");
    EXPECT_TRUE(visible("analyzeBusy"));
    EXPECT_TRUE(visible("compositionBar"));
    EXPECT_TRUE(visible("systemMeasuring_vm"));
    EXPECT_FALSE(visible("systemSize_vm"));
    ASSERT_TRUE(analysisEnds());
    EXPECT_EQ(text("analyzeButton"), "Re-analyze");
    EXPECT_FALSE(visible("analyzeBusy"));
    EXPECT_FALSE(visible("systemMeasuring_vm"));
    EXPECT_FALSE(visible("systemMessage"));
    EXPECT_EQ(sizeText("vm"), "0 KB");
    // Nothing purgeable: no line at all.
    EXPECT_EQ(read("systemNote", "text").toString(), "");
    // The bar holds only what measured above zero.
    const QStringList measured = read("compositionBar", "order").toStringList();
    EXPECT_TRUE(measured.contains("mailmsg") && !measured.contains("vm") && !measured.contains("tm"));
    // No snapshots: "None", and nothing to delete.
    EXPECT_EQ(sizeText("tm"), "None");
    EXPECT_FALSE(actionEnabled("tm"));

    clickOnScreen("analyzeButton");
    ASSERT_TRUE(analysisEnds());
    const QStringList expected{"vm",     "unifiedlogs", "spotlight",  "simruntimes", "vmdisks", "folders",
                               "assets", "dbother",     "appsupport", "containers",  "mailmsg"};
    EXPECT_EQ(read("compositionBar", "order").toStringList(), expected);
    EXPECT_EQ(text("systemTotal"), Format::byteCount(11 * 102'400));
    EXPECT_EQ(sizeText("tm"), "2 snapshots");
    EXPECT_TRUE(actionEnabled("tm"));
    for (const QString& id : expected) {
        EXPECT_EQ(sizeText(id), Format::byteCount(102'400)) << id.toStdString();
        // Every bar full: each area is as large as the largest.
        EXPECT_DOUBLE_EQ(read("systemRow_" + id, "fraction").toDouble(), 1.0) << id.toStdString();
    }
}

TEST_F(SystemData, AnActionRunsOnlyAfterContinueAndOneAtATime) {
    // The system's runtimes cannot go (the helper's answer); the user's are tried.
    ScopedAuthorizationTool tool(answering({3, "", "error: nothing unused"}));
    // The user's part runs until the test lets it end (or a minute passes).
    const std::string marker = home().path("flatpak-runs"), release = home().path("flatpak-may-end");
    home().installTool("flatpak", "echo run >> " + shellQuote(marker) + "\nfor i in $(seq 1200); do [ -e " +
                                      shellQuote(release) + " ] && break; sleep 0.05; done");
    home().installTool("journalctl", "exit 0");
    showScreen();

    // Cancel and Escape: nothing runs.
    auto dismissed = [&](const char* action, const std::function<void()>& dismiss) {
        clickOnScreen(action);
        ASSERT_TRUE(UiHarness::waitFor([&] { return read("systemActionDialog", "opened").toBool(); }));
        dismiss();
        ASSERT_TRUE(UiHarness::waitFor([&] { return !read("systemActionDialog", "visible").toBool(); }));
        EXPECT_TRUE(read("systemDataView", "pending").isNull());
    };
    dismissed("systemAction_simruntimes", [&] { click(item("systemActionCancel")); });
    dismissed("systemAction_unifiedlogs", [&] { key(Qt::Key_Escape); });

    EXPECT_TRUE(model().systemRunningEntry().isEmpty());
    EXPECT_FALSE(exists(marker));

    // Continue: exactly this action, and every action button waits for it.
    clickOnScreen("systemAction_simruntimes");
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("systemActionDialog", "opened").toBool(); }));
    click(item("systemActionContinue"));
    ASSERT_EQ(model().systemRunningEntry(), "simruntimes");
    EXPECT_TRUE(read("systemDataView", "pending").isNull());
    EXPECT_TRUE(UiHarness::waitFor([&] { return !read("systemActionDialog", "visible").toBool(); }));
    EXPECT_TRUE(visible("systemActionBusy_simruntimes"));
    EXPECT_FALSE(visible("systemActionBusy_unifiedlogs"));
    for (const QString& id : reducibleIDs)
        EXPECT_FALSE(actionEnabled(id)) << id.toStdString();

    home().makeFile("flatpak-may-end");
    ASSERT_TRUE(UiHarness::waitFor([&] { return model().systemRunningEntry().isEmpty(); }, 30000));
    EXPECT_EQ(readFile(marker), "run\n");
    EXPECT_FALSE(visible("systemActionBusy_simruntimes"));
    EXPECT_TRUE(visible("systemMessage"));
    EXPECT_EQ(read("systemMessage", "text").toString(),
              "iOS Simulator Runtimes & Devices: error: nothing unused");
    EXPECT_TRUE(actionEnabled("simruntimes"));
    EXPECT_TRUE(actionEnabled("unifiedlogs"));
}
