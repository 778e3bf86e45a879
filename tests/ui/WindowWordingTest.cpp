// The window as this system shows it, through its Linux English translation: after a
// scan, on every screen and sheet, no visible text names what only the other platform
// has, and counted texts read in the singular for one.

#include "WindowFixture.h"

#include "app/LinuxWording.h"
#include "support/AuthorizationToolStandIn.h"
#include "support/SnapshotStandIn.h"

#include <QCoreApplication>
#include <QQuickItem>

namespace {

// Every text on screen: the "text" of each visible item, popups and dialogs included.
void collectTexts(QQuickItem* item, QStringList& texts) {
    if (!item || !item->isVisible())
        return;
    const QVariant text = item->property("text");
    if (text.typeId() == QMetaType::QString && !text.toString().isEmpty())
        texts << text.toString();
    for (QQuickItem* child : item->childItems())
        collectTexts(child, texts);
}

} // namespace

class WindowWording : public WindowTest {
protected:
    void SetUp() override {
        // Before the model reads its first catalogue text.
        ASSERT_TRUE(LinuxWording::install(*QCoreApplication::instance()));
        WindowTest::SetUp();
    }

    // What the screen shows that only the other platform has.
    std::string foreignWords(const char* screen) {
        EXPECT_TRUE(UiHarness::waitForFrames(window()));
        QStringList texts;
        collectTexts(window()->contentItem(), texts);
        EXPECT_GT(texts.size(), 5) << screen;
        QStringList found;
        for (const QString& text : texts)
            for (const char* word : {"macOS", "Mac ", "Macintosh", "Finder", "System Settings", "SIP",
                                     "Time Machine", "Spotlight", "Console.app", "iCloud", "App Store"})
                if (text.contains(QLatin1String(word)))
                    found << QStringLiteral("%1: \"%2\" in \"%3\"").arg(screen, word, text);
        return found.join(QLatin1Char('\n')).toStdString();
    }
};

TEST_F(WindowWording, NoScreenOrSheetNamesTheOtherPlatform) {
    // Snapshots to delete (an administrator's item); a batch that removes nothing, so
    // the result reports the failure; a measurement that finds every area.
    home().installTool("snapper", snapperWithSnapshots(1));
    ScopedAuthorizationTool tool([](const Privileged::Launch& launch) {
        return launch.request.mode == WorkList::measureMode
                   ? Shell::Output{0,
                                   "tm|1\nvm|0\nunifiedlogs|9\nspotlight|8\nsimruntimes|7\nvmdisks|6\n"
                                   "folders|5\nassets|4\ndbother|3\nappsupport|2\ncontainers|1\nmailmsg|1\n",
                                   ""}
                   : Shell::Output{0, "", ""};
    });
    ASSERT_TRUE(scanToEnd());
    EXPECT_EQ(foreignWords("overview"), "");
    EXPECT_EQ(text("heroVolumeName"), "System Disk");

    navigate("category", "system.snapshots");
    ASSERT_TRUE(UiHarness::waitFor([&] { return visible("categoryDetailView"); }));
    EXPECT_EQ(foreignWords("category"), "");
    EXPECT_EQ(text("categoryItemCount"), "1 item");

    tick("cmd.tmutil");
    EXPECT_EQ(text("selectionCountText"), "1 item selected");
    model().requestClean();
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("confirmSheet", "opened").toBool(); }));
    EXPECT_EQ(text("confirmTitle"), "Clean 1 Item");
    EXPECT_EQ(text("warnAdmin"), "1 system item — the system will ask for an administrator password once");
    EXPECT_EQ(foreignWords("confirmation"), "");

    model().setShowConfirm(false);
    model().clean();
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("resultSheet", "opened").toBool(); }));
    ASSERT_EQ(model().lastResult()->failures.size(), 1u);
    EXPECT_EQ(model().lastResult()->failures[0].reason, "Protected by the system or currently in use");
    EXPECT_EQ(text("failuresTitle"), "1 Item Could Not Be Cleaned");
    EXPECT_EQ(foreignWords("result"), "");

    model().setShowResult(false);
    navigate("systemData");
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("resultSheet", "visible") == false; }));
    model().analyzeSystemData();
    ASSERT_TRUE(UiHarness::waitFor([&] { return !model().systemAnalyzing(); }, 60000));
    EXPECT_EQ(text("systemSize_tm"), "1 snapshot");
    EXPECT_EQ(foreignWords("System Data"), "");
    QMetaObject::invokeMethod(find("systemDataView"), "ask", Q_ARG(QVariant, model().systemEntries()[0]));
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("systemActionDialog", "opened").toBool(); }));
    EXPECT_EQ(foreignWords("System Data action"), "");
}
