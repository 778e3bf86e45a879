// Scan orchestration over real scans of fake homes: finishing, stopping, rescans,
// late events and the list models the views read while a scan fills them.

#include "ModelTestSupport.h"

#include "support/ProcessCounts.h"
#include "support/TempTree.h"

#include <QAbstractItemModelTester>
#include <QTest>

#include <chrono>
#include <set>
#include <thread>

using namespace ModelTest;
using Phase = AppModel::Phase;
using State = AppModel::CategoryScanState;
using Tester = QAbstractItemModelTester;

namespace {

std::set<std::string> keysOf(const ItemsByCategory& grouped) {
    std::set<std::string> keys;
    for (const auto& [id, list] : grouped)
        keys.insert(id);
    return keys;
}

std::vector<std::string> tableNames(const QAbstractItemModel& table) {
    std::vector<std::string> names;
    for (int row = 0; row < table.rowCount(); ++row)
        names.push_back(table.index(row, 0).data(CategoryItemsModel::NameRole).toString().toStdString());
    return names;
}

} // namespace

TEST(ScanFlow, FinishedScanMarksEveryCategoryDoneSortsAndNeverMovesBackwards) {
    FakeHome home;
    const std::string small = makeCacheFolder(home, "com.example.small", 10'000);
    const std::string big = makeCacheFolder(home, "com.example.big", 300'000);
    const std::string mid = makeCacheFolder(home, "com.example.mid", 100'000);
    const std::string tie = makeCacheFolder(home, "com.example.tie", 10'000);
    home.makeFileOfSize("Library/Logs/app.log", 5'000);
    // A command item (no size) before the measured item the scanner found after it.
    home.installTool("brew", "exit 0");
    const std::string brewCache = makeCacheFolder(home, "Homebrew", 10'000);

    AppModel model;
    model.categoryItems()->setCategoryId("user.caches");
    Tester listTester(model.categoryList(), Tester::FailureReportingMode::Fatal);
    Tester itemsTester(model.categoryItems(), Tester::FailureReportingMode::Fatal);
    Tester tableTester(model.categoryTable(), Tester::FailureReportingMode::Fatal);
    std::vector<double> progress;
    QObject::connect(&model, &AppModel::scanProgressChanged,
                     [&] { progress.push_back(model.scanProgress()); });

    // Asking for another scan while one runs, once a category is in, changes nothing.
    bool askedDuringScan = false;
    QObject::connect(&model, &AppModel::categoryStateChanged, [&] {
        if (askedDuringScan || model.phase() != Phase::scanning ||
            model.stateOf("user.caches") != State::done)
            return;
        askedDuringScan = true;
        const ScanItems before = model.items();
        const QString status = model.statusText();
        SignalLog log(model);
        model.scan();
        EXPECT_EQ(log.total(), 0);
        EXPECT_EQ(model.items(), before);
        EXPECT_EQ(model.statusText(), status);
    });

    SignalLog log(model);
    ASSERT_TRUE(scanToEnd(model));
    EXPECT_TRUE(askedDuringScan);

    EXPECT_EQ(model.phase(), Phase::ready);
    EXPECT_EQ(log.count("phaseChanged"), 2); // scanning, then ready
    EXPECT_TRUE(model.statusText().isEmpty());
    EXPECT_TRUE(model.scanningCategory().isEmpty());
    EXPECT_TRUE(model.hasLastScan());
    EXPECT_EQ(model.scanStepCount(), static_cast<int>(model.categories().size()));
    for (const CleanCategory& category : model.categories())
        EXPECT_EQ(model.stateOf(QString::fromStdString(category.id)), State::done) << category.id;
    for (CategoryGroup group : CategoryGroups::allCases())
        EXPECT_EQ(model.state(group), State::done);

    // Only categories that found something have a list, sorted largest first, ties in
    // the scanner's order and unknown sizes last.
    EXPECT_EQ(keysOf(model.itemsByCategory()),
              (std::set<std::string>{"user.caches", "user.logs", "dev.packages"}));
    const std::vector<std::string> scanned = idsOf(model.items());
    const bool smallFirst =
        std::find(scanned.begin(), scanned.end(), small) < std::find(scanned.begin(), scanned.end(), tie);
    EXPECT_EQ(idsOf(itemsOf(model, "user.caches")),
              (std::vector<std::string>{big, mid, smallFirst ? small : tie, smallFirst ? tie : small}));
    EXPECT_EQ(idsOf(itemsOf(model, "dev.packages")), (std::vector<std::string>{brewCache, "cmd.brew"}));

    ASSERT_FALSE(progress.empty());
    for (size_t i = 1; i < progress.size(); ++i)
        EXPECT_LE(progress[i - 1], progress[i]) << "at change " << i;
    EXPECT_EQ(progress.back(), 1.0);
}

TEST(ScanFlow, TicksSurviveRescansOnlyForItemsFoundAgain) {
    FakeHome home;
    const std::string kept = makeCacheFolder(home, "com.example.kept", 300'000);
    const std::string vanished = makeCacheFolder(home, "com.example.vanished", 200'000);
    const std::string later = makeCacheFolder(home, "com.example.later", 100'000);
    AppModel model;
    ASSERT_TRUE(scanToEnd(model));
    model.setSelected(kept, true);
    model.setSelected(vanished, true);
    removeTreeForcefully(home.path("Library/Caches/com.example.vanished"));
    const std::string added = makeCacheFolder(home, "com.example.added", 50'000);

    // A tick given while the scan runs, in a category already finished, is replaced
    // by the finished scan's result.
    bool tickedDuringScan = false;
    auto tickOnceCachesAreIn = [&](bool thenStop) {
        return [&, thenStop] {
            if (tickedDuringScan || model.phase() != Phase::scanning ||
                model.stateOf("user.caches") != State::done)
                return;
            tickedDuringScan = true;
            model.setSelected(later, true);
            if (thenStop)
                model.cancelScan();
        };
    };
    auto connection = QObject::connect(&model, &AppModel::categoryStateChanged, tickOnceCachesAreIn(false));
    ASSERT_TRUE(scanToEnd(model));
    ASSERT_TRUE(tickedDuringScan);
    EXPECT_EQ(model.selection(), (ItemIDs{kept}));
    ASSERT_NE(find(model.items(), added), nullptr);

    // After a stop the same tick stays.
    QObject::disconnect(connection);
    tickedDuringScan = false;
    QObject::connect(&model, &AppModel::categoryStateChanged, tickOnceCachesAreIn(true));
    ASSERT_TRUE(scanToEnd(model));
    ASSERT_TRUE(tickedDuringScan);
    EXPECT_EQ(model.phase(), Phase::ready);
    EXPECT_EQ(model.selection(), (ItemIDs{kept, later}));
}

TEST(ScanFlow, StopAfterTwoCategoriesKeepsThemAndIgnoresWhatComesLate) {
    FakeHome home;
    home.makeFile("Library/Safari/Bookmarks.plist", "granted"); // Full Disk Access, so Mail is searched
    home.makeFileOfSize(".Trash/old.zip", 40'000);
    home.makeFileOfSize("Library/Containers/com.apple.mail/Data/Library/Mail Downloads/invoice.pdf", 20'000);
    makeCacheFolder(home, "com.example.never", 10'000);
    AppModel model;
    ASSERT_TRUE(model.hasFullDiskAccess());
    // The Trash and Mail are the first two categories.
    const QString third = QString::fromStdString(model.categories()[2].id);

    bool stopped = false;
    double progressAtStop = -1;
    QObject::connect(&model, &AppModel::categoryStateChanged, [&] {
        if (stopped || model.stateOf(third) != State::scanning)
            return;
        stopped = true;
        model.cancelScan();
        progressAtStop = model.scanProgress();
    });
    ASSERT_TRUE(scanToEnd(model));
    ASSERT_TRUE(stopped);

    EXPECT_EQ(model.phase(), Phase::ready);
    EXPECT_TRUE(model.hasLastScan());
    EXPECT_TRUE(model.statusText().isEmpty());
    EXPECT_TRUE(model.scanningCategory().isEmpty());
    EXPECT_EQ(keysOf(model.itemsByCategory()), (std::set<std::string>{"user.trash", "user.mail"}));
    EXPECT_EQ(model.stateOf("user.trash"), State::done);
    EXPECT_EQ(model.stateOf("user.mail"), State::done);
    EXPECT_EQ(model.stateOf(third), State::pending);
    EXPECT_EQ(model.state(CategoryGroup::user), State::scanning); // partly scanned
    EXPECT_EQ(model.state(CategoryGroup::system), State::pending);
    EXPECT_GT(progressAtStop, 0.0);
    EXPECT_LT(progressAtStop, 1.0);

    // Whatever the scanner still sends changes nothing.
    const ScanItems items = model.items();
    const AppModel::CategoryStates states = model.categoryState();
    SignalLog log(model);
    ASSERT_TRUE(waitForWorkers(model));
    QTest::qWait(50);
    EXPECT_EQ(log.total(), 0);
    EXPECT_EQ(model.items(), items);
    EXPECT_EQ(model.categoryState(), states);

    // What was found before the stop can be cleaned.
    model.setAll("user.trash", true);
    model.requestClean("user.trash");
    EXPECT_TRUE(model.showConfirm());
}

// A stop outside a scan settles the phase on what is listed: idle without items, ready
// with them and a new scan date. One before any category started empties the list and
// keeps the last scan's date.
TEST(ScanFlow, StopOutsideAScanOrBeforeAnyCategorySettlesThePhase) {
    FakeHome home;
    AppModel model;
    ASSERT_TRUE(scanToEnd(model));
    ASSERT_TRUE(model.items().empty());
    ASSERT_EQ(model.phase(), Phase::ready);
    const QDateTime emptyScan = model.lastScanDate();
    ASSERT_TRUE(emptyScan.isValid());
    model.cancelScan();
    EXPECT_EQ(model.phase(), Phase::idle);
    EXPECT_EQ(model.lastScanDate(), emptyScan);

    makeCacheFolder(home, "com.example.found", 10'000);
    ASSERT_TRUE(scanToEnd(model));
    const std::optional<Date> finished = model.lastScanTime();
    model.cancelScan();
    EXPECT_EQ(model.phase(), Phase::ready);
    EXPECT_GT(model.lastScanTime(), finished);
    const QDateTime lastScan = model.lastScanDate();

    // The probes run before any category starts; this one holds that phase for seconds.
    home.installTool("xcrun", "sleep 3\necho 'iPhone (unavailable)'");
    model.scan();
    ASSERT_TRUE(waitFor([&] { return model.statusText() == QStringLiteral("Preparing scan…"); }));
    model.cancelScan();
    EXPECT_EQ(model.phase(), Phase::idle);
    EXPECT_EQ(model.lastScanDate(), lastScan);
    EXPECT_TRUE(model.categoryState().empty());
    EXPECT_TRUE(model.items().empty());
    EXPECT_TRUE(model.statusText().isEmpty());
    SignalLog log(model);
    ASSERT_TRUE(waitForWorkers(model));
    EXPECT_EQ(log.total(), 0);
}

TEST(ScanFlow, EventsOfAStoppedScanNeverReachTheNextOne) {
    FakeHome home;
    const std::string old = makeCacheFolder(home, "com.example.old", 50'000);
    AppModel model;
    const int threadsBefore = threadCount();
    model.scan();
    // Without running the event loop, let the scanner finish: every event it sends
    // (and its result) is then waiting in the queue when the next scan starts.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (threadCount() > threadsBefore && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ASSERT_LE(threadCount(), threadsBefore) << "the first scan did not finish";

    removeTreeForcefully(home.path("Library/Caches/com.example.old"));
    const std::string fresh = makeCacheFolder(home, "com.example.fresh", 60'000);
    model.cancelScan();
    model.scan();
    bool oldSeen = false;
    QObject::connect(&model, &AppModel::itemsChanged, [&] { oldSeen = oldSeen || find(model.items(), old); });
    ASSERT_TRUE(waitFor([&] { return model.phase() != Phase::scanning; }));

    EXPECT_FALSE(oldSeen);
    EXPECT_EQ(model.phase(), Phase::ready);
    EXPECT_EQ(idsOf(model.items()), (std::vector<std::string>{fresh}));
    EXPECT_EQ(idsOf(itemsOf(model, "user.caches")), (std::vector<std::string>{fresh}));
}

TEST(ScanFlow, CategoryTableFiltersAndSortsInPlace) {
    FakeHome home;
    const std::string alpha = makeCacheFolder(home, "alpha", 300'000);
    const std::string beta = makeCacheFolder(home, "Beta", 100'000);
    const std::string gamma10 = makeCacheFolder(home, "gamma10", 200'000);
    const std::string gamma9 = makeCacheFolder(home, "gamma9", 50'000);
    const int64_t day = 86'400, now = std::time(nullptr);
    setModificationTime(alpha, now - 4 * day);
    setModificationTime(beta, now - 1 * day);
    setModificationTime(gamma10, now - 3 * day);
    setModificationTime(gamma9, now - 2 * day);
    AppModel model;
    ASSERT_TRUE(scanToEnd(model));

    CategoryItemsProxy& table = *model.categoryTable();
    model.categoryItems()->setCategoryId("user.caches");
    Tester itemsTester(model.categoryItems(), Tester::FailureReportingMode::Fatal);
    Tester tableTester(&table, Tester::FailureReportingMode::Fatal);
    QSignalSpy aboutToReset(&table, &QAbstractItemModel::modelAboutToBeReset);
    QSignalSpy counts(&table, &CategoryItemsProxy::countChanged);

    EXPECT_EQ(tableNames(table), (std::vector<std::string>{"alpha", "gamma10", "Beta", "gamma9"}));
    table.setFilterText("GAMMA");
    EXPECT_EQ(tableNames(table), (std::vector<std::string>{"gamma10", "gamma9"}));
    EXPECT_EQ(table.count(), 2);
    EXPECT_GE(counts.count(), 1);
    table.sortBy(CategoryItemsProxy::SortKey::name); // names ascending, numbers by value
    EXPECT_EQ(tableNames(table), (std::vector<std::string>{"gamma9", "gamma10"}));
    table.sortBy(CategoryItemsProxy::SortKey::name); // the same column again reverses
    EXPECT_EQ(tableNames(table), (std::vector<std::string>{"gamma10", "gamma9"}));
    table.setFilterText("");
    EXPECT_EQ(tableNames(table), (std::vector<std::string>{"gamma10", "gamma9", "Beta", "alpha"}));
    table.sortBy(CategoryItemsProxy::SortKey::date); // newest first
    EXPECT_EQ(tableNames(table), (std::vector<std::string>{"Beta", "gamma9", "gamma10", "alpha"}));

    model.setItemSelected(table.keyAt(0), true);
    EXPECT_TRUE(table.index(0, 0).data(CategoryItemsModel::CheckedRole).toBool());
    EXPECT_EQ(aboutToReset.count(), 0);
}
