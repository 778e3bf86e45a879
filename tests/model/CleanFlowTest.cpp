// The clean flow on scanned fake homes: confirmation scope, a clean with failures,
// purging what it moved, the large-file folders and copying paths.

#include "ModelTestSupport.h"

#include "model/ItemKey.h"
#include "support/PathQueries.h"
#include "support/TempTree.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QRegularExpression>

#include <functional>
#include <utility>

using namespace ModelTest;
using Phase = AppModel::Phase;
using State = AppModel::CategoryScanState;

namespace {

::testing::AssertionResult cleanToEnd(AppModel& model) {
    model.clean();
    if (model.phase() != Phase::cleaning)
        return ::testing::AssertionFailure() << "the clean did not start";
    if (!waitFor([&model] { return model.phase() != Phase::cleaning; }))
        return ::testing::AssertionFailure() << "the clean did not end in time";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult purgeToEnd(AppModel& model) {
    model.purgeLastTrashed();
    if (!waitFor([&model] { return !model.purgeMessage().isEmpty(); }))
        return ::testing::AssertionFailure() << "no purge message";
    return waitForWorkers(model);
}

// Calls `meanwhile` when the next queued call reaches the main thread, before it is
// applied: an operation's result can then be made to land after a later one's.
class BeforeNextQueuedCall : public QObject {
public:
    explicit BeforeNextQueuedCall(std::function<void()> meanwhile) : meanwhile_(std::move(meanwhile)) {
        QCoreApplication::instance()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::MetaCall && meanwhile_)
            std::exchange(meanwhile_, {})();
        return false;
    }

private:
    std::function<void()> meanwhile_;
};

// "Deleted permanently — freed 12 KB", with the count of failures when there are any.
QRegularExpression purgeLine(const QString& failedPart) {
    return QRegularExpression(
        QStringLiteral("^Deleted permanently%1 — freed (0 KB|\\d[\\d.,]* (bytes?|KB|MB|GB))$")
            .arg(failedPart));
}

} // namespace

TEST(CleanFlow, RequestCleanSetsItsScopeButOpensNothingWithoutItemsOrDuringAScan) {
    FakeHome home;
    const std::string cache = makeCacheFolder(home, "com.example.cache", 100'000);
    home.makeFileOfSize("Library/Logs/app.log", 5'000);
    AppModel model;
    ASSERT_TRUE(scanToEnd(model));
    model.setSelected(cache, true);

    // Nothing ticked in that category: no sheet, but the scope holds, and a clean
    // that follows cleans nothing although another category has a tick.
    model.requestClean("user.logs");
    EXPECT_EQ(model.cleanScope(), QStringLiteral("user.logs"));
    EXPECT_FALSE(model.showConfirm());
    SignalLog notified(model);
    model.clean();
    EXPECT_EQ(notified.total(), 0);
    EXPECT_FALSE(model.hasRunningWork());
    EXPECT_TRUE(exists(cache));

    // During a scan, with the ticked item already found again: scope cleared, no sheet.
    bool asked = false;
    QObject::connect(&model, &AppModel::categoryStateChanged, [&] {
        if (asked || model.phase() != Phase::scanning || model.stateOf("user.caches") != State::done)
            return;
        asked = true;
        model.requestClean();
        EXPECT_FALSE(model.itemsToClean().empty());
        EXPECT_TRUE(model.cleanScope().isEmpty());
        EXPECT_FALSE(model.showConfirm());
    });
    ASSERT_TRUE(scanToEnd(model));
    EXPECT_TRUE(asked);
}

TEST(CleanFlow, TwoOfFiveFailAndTheResultLandsInOneStep) {
    FakeHome home;
    const std::string big = makeCacheFolder(home, "com.example.big", 300'000);
    const std::string mid = makeCacheFolder(home, "com.example.mid", 200'000);
    const std::string gone = makeCacheFolder(home, "com.example.gone", 100'000);
    const std::string stays = makeCacheFolder(home, "com.example.stays", 50'000);
    const std::string log = idOf(home.makeFileOfSize("Library/Logs/only.log", 5'000));
    home.installTool("brew", "echo 'Error: permission denied' >&2; exit 1");
    AppModel model;
    ASSERT_TRUE(scanToEnd(model));
    for (const std::string& id : {big, mid, gone, log, std::string("cmd.brew")})
        model.setSelected(id, true);
    removeTreeForcefully(gone); // the user removed it meanwhile

    // Every part of the result is in place before the first notification.
    int itemsNotified = 0;
    QObject::connect(&model, &AppModel::itemsChanged, [&] {
        ++itemsNotified;
        EXPECT_EQ(model.selection(), (ItemIDs{gone, "cmd.brew"}));
        EXPECT_FALSE(model.itemsByCategory().contains("user.logs"));
        EXPECT_EQ(idsOf(itemsOf(model, "user.caches")), (std::vector<std::string>{gone, stays}));
        ASSERT_TRUE(model.lastResult().has_value());
        EXPECT_EQ(model.phase(), Phase::ready);
    });

    QSignalSpy results(&model, &AppModel::resultsChanged), totals(&model, &AppModel::totalsChanged);
    model.clean();
    ASSERT_EQ(model.phase(), Phase::cleaning);
    // Neither a scan nor a second clean may start meanwhile.
    SignalLog notified(model);
    model.scan();
    model.clean();
    EXPECT_EQ(notified.total(), 0);
    ASSERT_TRUE(waitFor([&] { return model.phase() != Phase::cleaning; }));

    EXPECT_EQ(itemsNotified, 1);
    EXPECT_EQ(results.count(), 1); // what the result views derive from, announced once
    EXPECT_EQ(totals.count(), 1);
    EXPECT_EQ(notified.count("phaseChanged"), 1);
    EXPECT_EQ(notified.count("selectionChanged"), 1);
    EXPECT_TRUE(model.showResult());
    EXPECT_TRUE(model.statusText().isEmpty());
    EXPECT_EQ(model.cleanProgress(), 1.0);
    ASSERT_TRUE(model.lastResult().has_value());
    const CleanResult& result = *model.lastResult();
    EXPECT_EQ(result.succeeded.size(), 3u);
    std::set<std::string> failed;
    for (const CleanFailure& failure : result.failures)
        failed.insert(failure.item.id);
    EXPECT_EQ(failed, (std::set<std::string>{gone, "cmd.brew"}));
    EXPECT_EQ(model.items().size(), 3u); // the two failures and the untouched one
    EXPECT_EQ(model.stateOf("user.logs"), State::done);
    EXPECT_FALSE(exists(big));
}

TEST(CleanFlow, PurgeDeletesWhatTheCleanMovedOnlyOnce) {
    FakeHome home;
    const std::string first = makeCacheFolder(home, "com.example.first", 100'000);
    const std::string second = makeCacheFolder(home, "com.example.second", 60'000);
    const std::string third = makeCacheFolder(home, "com.example.third", 30'000);
    const std::string fourth = makeCacheFolder(home, "com.example.fourth", 20'000);
    const std::string fifth = makeCacheFolder(home, "com.example.fifth", 10'000);
    const std::string trash = home.path(".local/share/Trash/files/");
    home.makeFileOfSize(".local/share/Trash/files/kept.txt", 4'000); // the user's own Trash stays untouched
    AppModel model;
    ASSERT_TRUE(scanToEnd(model));

    model.setSelected(first, true);
    model.setSelected(second, true);
    ASSERT_TRUE(cleanToEnd(model));
    ASSERT_EQ(model.lastResult()->trashedURLs.size(), 2u);
    ASSERT_TRUE(exists(trash + "com.example.first"));

    ASSERT_TRUE(purgeToEnd(model));
    EXPECT_TRUE(purgeLine("").match(model.purgeMessage()).hasMatch()) << model.purgeMessage().toStdString();
    EXPECT_TRUE(model.lastResult()->trashedURLs.empty());
    EXPECT_FALSE(exists(trash + "com.example.first"));
    EXPECT_FALSE(exists(trash + "com.example.second"));
    EXPECT_TRUE(exists(trash + "kept.txt"));

    // Offered once only.
    SignalLog notified(model);
    model.purgeLastTrashed();
    EXPECT_FALSE(model.hasRunningWork());
    EXPECT_EQ(notified.total(), 0);

    // A new clean clears the message; a purge that cannot delete one location says so.
    model.setSelected(third, true);
    ASSERT_TRUE(cleanToEnd(model));
    EXPECT_TRUE(model.purgeMessage().isEmpty());
    ASSERT_EQ(model.lastResult()->trashedURLs.size(), 1u);
    removeTreeForcefully(model.lastResult()->trashedURLs.front()); // emptied by hand meanwhile
    ASSERT_TRUE(purgeToEnd(model));
    EXPECT_TRUE(purgeLine(" \\(1 failed\\)").match(model.purgeMessage()).hasMatch())
        << model.purgeMessage().toStdString();

    // A purge that ends after a newer clean leaves that clean's list and sheet alone,
    // and the newer list can still be purged.
    model.setSelected(fourth, true);
    ASSERT_TRUE(cleanToEnd(model));
    ASSERT_TRUE(waitForWorkers(model));
    model.setSelected(fifth, true);
    bool newerApplied = false;
    BeforeNextQueuedCall newerCleanFirst([&] { newerApplied = cleanToEnd(model); });
    model.purgeLastTrashed();
    ASSERT_TRUE(waitForWorkers(model));
    ASSERT_TRUE(newerApplied);
    EXPECT_FALSE(exists(trash + "com.example.fourth"));
    EXPECT_TRUE(model.purgeMessage().isEmpty());
    ASSERT_EQ(model.lastResult()->trashedURLs.size(), 1u);
    ASSERT_TRUE(purgeToEnd(model));
    EXPECT_FALSE(exists(trash + "com.example.fifth"));
}

TEST(CleanFlow, ChosenFoldersAreAddedOnceAndSearchedByTheNextScan) {
    FakeHome home;
    const std::string drive = home.tree().makeDir("drive");
    const std::string other = home.tree().makeDir("other");
    home.tree().makeFileOfSize("drive/film.mov", 2 * 1024 * 1024);
    // Over a thousandth of 10^9 bytes but under a thousandth of 2^30: a gigabyte here is 2^30.
    home.tree().makeFileOfSize("drive/under.bin", 980'000);
    // The window's dialog test shows a dismissed dialog adding nothing; here each
    // answer repeats a folder, and the second adds nothing new.
    AppModel model;
    model.setFolderChooser([&](std::function<void(std::vector<std::string>)> onChosen) {
        onChosen({drive, other, drive});
    });
    SignalLog notified(model);
    model.addRoot();
    model.addRoot();
    EXPECT_EQ(model.extraRoots(), (AppModel::RootList{drive, other}));
    EXPECT_EQ(notified.count("extraRootsChanged"), 1);
    EXPECT_EQ(model.phase(), Phase::idle); // adding does not scan

    model.setLargeThresholdGB(1.0 / 1024);
    ASSERT_TRUE(scanToEnd(model));
    EXPECT_EQ(idsOf(itemsOf(model, "large.files")), (std::vector<std::string>{idOf(drive + "/film.mov")}));

    model.removeRootPath(QString::fromStdString(drive));
    EXPECT_EQ(model.extraRoots(), (AppModel::RootList{other}));
}

TEST(CleanFlow, CopyPathPutsTheExactBytesOnTheClipboard) {
    FakeHome home;
    const std::string odd = makeCacheFolder(home, std::string("caf\xE9 \xFF\xFE", 7), 10'000);
    AppModel model;
    ASSERT_TRUE(scanToEnd(model));
    ASSERT_NE(find(model.items(), odd), nullptr);
    QClipboard* clipboard = QGuiApplication::clipboard();
    model.copyItemPath(ItemKey::fromID(odd)); // as the views ask for it
    ASSERT_NE(clipboard->mimeData(), nullptr);
    EXPECT_EQ(clipboard->mimeData()->data("text/plain"), QByteArray::fromStdString(odd));
}
