// `veltro scan` and `veltro clean` as a user runs them: the real binary in a child
// process over a fake home, judged by its output, exit status and the files.

#include "support/BinaryRun.h"
#include "support/FakeHome.h"

#include "catalogue/CleanupRules.h"
#include "support/PathQueries.h"
#include "support/TreeSnapshot.h"

#include <gtest/gtest.h>

#include <QJsonArray>

#include <set>

namespace {

std::set<QString> keysOf(const QJsonObject& object) {
    const QStringList keys = object.keys();
    return {keys.begin(), keys.end()};
}

// A home with something for several recommended categories, one that is not
// recommended, and files the scan must leave alone.
struct Fixture {
    FakeHome home;
    std::string cacheA, cacheB, log, oldTrash, store, document;

    Fixture() {
        cacheA = home.makeDir("Library/Caches/com.example.a");
        home.makeFileOfSize("Library/Caches/com.example.a/blob", 200'000);
        cacheB = home.makeDir("Library/Caches/com.example.b");
        home.makeFileOfSize("Library/Caches/com.example.b/blob", 80'000);
        log = home.makeFileOfSize("Library/Logs/app.log", 6'000);
        oldTrash = home.makeFileOfSize(".Trash/old.zip", 30'000);
        store = home.makeFileOfSize(".cache/models/weights.bin", 90'000);
        document = home.makeFile("Documents/report.txt", "keep me");
    }
};

} // namespace

TEST(ScanCommand, JsonHasTheDocumentedShape) {
    FakeHome home;
    home.makeFileOfSize("Library/Caches/plain", 10'000);
    home.installTool("brew", "exit 0");

    const BinaryRun run = BinaryRun::of({"scan", "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    const QJsonObject root = run.json();

    EXPECT_EQ(keysOf(root), (std::set<QString>{"disk", "hasFullDiskAccess", "categories"}));
    EXPECT_EQ(keysOf(root["disk"].toObject()), (std::set<QString>{"total", "available"}));
    EXPECT_GT(root["disk"]["total"].toInteger(), 0);
    const QJsonArray categories = root["categories"].toArray();
    ASSERT_EQ(categories.size(), 22);

    const std::set<QString> categoryKeys{"id",        "group", "title",   "risk", "selectedByDefault",
                                         "totalSize", "items", "searched"};
    std::set<QString> searched;
    const std::set<QString> itemKeys{"id",     "name",    "path",  "size", "modified",
                                     "method", "command", "admin", "note"};
    QJsonObject brew;
    for (qsizetype i = 0; i < categories.size(); ++i) {
        const QJsonObject category = categories[i].toObject();
        EXPECT_EQ(keysOf(category), categoryKeys);
        EXPECT_EQ(category["id"].toString().toStdString(), CleanupRules::categories()[size_t(i)].id);
        qint64 total = 0;
        for (const QJsonValue& value : category["items"].toArray()) {
            const QJsonObject item = value.toObject();
            EXPECT_EQ(keysOf(item), itemKeys);
            total += item["size"].toInteger(0);
            if (item["id"] == QStringLiteral("cmd.brew"))
                brew = item;
        }
        EXPECT_EQ(category["totalSize"].toInteger(), total);
        for (const QJsonValue& folder : category["searched"].toArray())
            searched.insert(folder.toString());
        if (category["id"] == QStringLiteral("user.caches")) {
            EXPECT_EQ(category["searched"], QJsonArray{QString::fromStdString(home.path("Library/Caches"))});
        }
    }
    // The text report counts each folder once, whichever categories searched it.
    const BinaryRun text = BinaryRun::of({"scan"});
    EXPECT_NE(text.out.find("\nSearched " + std::to_string(searched.size()) + " places.\n"),
              std::string::npos)
        << text.out;

    // A command item has no path and no size, and says what it runs.
    ASSERT_FALSE(brew.isEmpty());
    EXPECT_TRUE(brew["path"].isNull());
    EXPECT_TRUE(brew["size"].isNull());
    EXPECT_EQ(brew["method"].toString(), QStringLiteral("command"));
    EXPECT_EQ(brew["command"].toString(), QStringLiteral("brew cleanup -s --prune=all"));
}

TEST(HeadlessArguments, BadArgumentsFailWithOneLineNamingThemAndChangeNothing) {
    Fixture fixture;
    const TreeSnapshot before = snapshotTree(fixture.home.home());
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"scan", "--large-threshold-gb", "abc"}, "--large-threshold-gb"},
        {{"scan", "--add-root", "/nonexistent"}, "--add-root"},
        {{"scan", "--frobnicate"}, "frobnicate"},
        {{"clean", "--recommended", "--yes", "--large-threshold-gb", "-1"}, "--large-threshold-gb"},
        {{"clean", "--recommended", "--yes", "--nope"}, "nope"},
        {{"clean", "--category", "user.nothing", "--yes"}, "--category"},
        {{"clean", "--item", fixture.document, "--yes"}, "--item"}, // exists, but no scan finds it
        {{"clean", "--recommended"}, "--yes"},                      // no terminal to confirm on
    };
    for (const auto& [arguments, named] : cases) {
        const BinaryRun run = BinaryRun::of(arguments);
        const std::string shown = arguments[0] + " " + arguments[1];
        EXPECT_EQ(run.status, 2) << shown << "\n" << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << shown << "\n" << run.err;
        EXPECT_NE(run.err.find(named), std::string::npos) << shown << "\n" << run.err;
        EXPECT_EQ(run.out, "") << shown;
    }
    EXPECT_EQ(describeDifferences(before, snapshotTree(fixture.home.home())), "");
}

// A dry run shows the summary and changes nothing; --yes moves what it showed to the
// Trash; --purge deletes for good what its own clean moved and nothing else.
TEST(CleanCommand, DryRunThenYesCleansIntoTheTrashAndPurgeDeletesWhatItMoved) {
    Fixture fixture;
    FakeHome& home = fixture.home;
    const TreeSnapshot before = snapshotTree(home.home());
    const BinaryRun dry = BinaryRun::of({"clean", "--recommended", "--dry-run"});
    EXPECT_EQ(dry.status, 0) << dry.err;
    // Two caches and the log to the Trash, the old Trash item deleted for good.
    for (const char* line : {"Clean 4 Items", "Move to Trash (recoverable)", "3 items",
                             "Delete permanently (items already in Trash)"})
        EXPECT_NE(dry.out.find(line), std::string::npos) << line << " in\n" << dry.out;
    EXPECT_EQ(dry.out.find("Cleaned"), std::string::npos) << dry.out;
    EXPECT_EQ(describeDifferences(before, snapshotTree(home.home())), "");

    const BinaryRun run = BinaryRun::of({"clean", "--recommended", "--yes"});
    EXPECT_EQ(run.status, 0) << run.out << run.err;
    EXPECT_NE(run.out.find("Cleaned 4 Items"), std::string::npos) << run.out;
    for (const std::string& path : {fixture.cacheA, fixture.cacheB, fixture.log, fixture.oldTrash})
        EXPECT_FALSE(exists(path)) << path;
    EXPECT_TRUE(exists(fixture.store));
    EXPECT_TRUE(exists(fixture.document));

    const std::string fresh = home.makeFileOfSize("Library/Caches/com.example.fresh/blob", 50'000);
    const BinaryRun purged = BinaryRun::of({"clean", "--category", "user.caches", "--yes", "--purge"});
    EXPECT_EQ(purged.status, 0) << purged.out << purged.err;
    EXPECT_NE(purged.out.find("Cleaned 1 Item\n"), std::string::npos) << purged.out;
    EXPECT_NE(purged.out.find("Deleted permanently — freed "), std::string::npos) << purged.out;
    EXPECT_FALSE(exists(home.path("Library/Caches/com.example.fresh")));
    EXPECT_FALSE(exists(home.path(".local/share/Trash/files/com.example.fresh")));
    EXPECT_FALSE(exists(home.path(".local/share/Trash/info/com.example.fresh.trashinfo")));
    EXPECT_TRUE(exists(home.path(".local/share/Trash/files/com.example.a")))
        << "the purge reached beyond its own clean";
}

TEST(HeadlessRun, WaitingForTheScanLeavesTheProcessorAlone) {
    FakeHome home;
    // The probe holds the scan for three seconds in which nothing happens.
    home.installTool("xcrun", "sleep 3\necho 'iPhone (unavailable)'");
    const BinaryRun run = BinaryRun::of({"scan"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_GE(run.wallSeconds, 3.0);
    EXPECT_LT(run.cpuSeconds, 0.5) << "busy-waiting during " << run.wallSeconds << " s";
}
