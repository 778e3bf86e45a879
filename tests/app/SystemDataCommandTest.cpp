// `veltro system-data` as root runs it (no password dialog): the real binary measuring
// a fake home's Linux folders and the system's, and running or refusing an action.

#include "support/BinaryRun.h"
#include "support/FakeHome.h"

#include "catalogue/LinuxCommands.h"
#include "removal/Shell.h"
#include "support/PathQueries.h"

#include <gtest/gtest.h>

#include <QJsonArray>

#include <unistd.h>

TEST(SystemDataCommand, ReportsWhatDuMeasuresAsJsonAndAsATable) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "measuring needs the administrator; only root runs it without a dialog";
    FakeHome home;
    home.makeFileOfSize(".thunderbird/abc.default/Mail/Inbox", 300'000);
    home.makeFileOfSize(".local/share/evolution/mail/local/cur/1", 40'000);
    home.makeFileOfSize(".local/share/flatpak/runtime/org.example.Platform/files.bin", 120'000);
    home.makeFileOfSize(".var/app/org.example.App/data/db", 60'000);

    const BinaryRun run = BinaryRun::of({"system-data", "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    const QJsonObject report = run.json();
    std::map<std::string, QJsonObject> entries;
    for (const QJsonValue& entry : report["entries"].toArray())
        entries[entry["id"].toString().toStdString()] = entry.toObject();
    ASSERT_EQ(entries.size(), 12u);
    auto sizeOf = [&](const std::string& id) { return entries[id]["size"].toInteger(-1); };
    auto folders = [&](const std::string& id) {
        std::vector<std::string> paths;
        for (const QJsonValue& folder : entries[id]["folders"].toArray())
            paths.push_back(folder.toString().toStdString());
        return paths;
    };

    for (const std::string id : {"mailmsg", "simruntimes", "containers"})
        EXPECT_EQ(sizeOf(id), duKibibytes(folders(id)) * 1024) << id;
    EXPECT_GE(sizeOf("mailmsg"), 340'000);
    // That no row counts another's folder twice is the analyzer's test and the
    // measurement script's exclusions.

    // The table: every area by its title here.
    const BinaryRun table = BinaryRun::of({"system-data"});
    ASSERT_EQ(table.status, 0) << table.err;
    EXPECT_NE(table.out.find("  Mail "), std::string::npos) << table.out;
    EXPECT_EQ(table.out.find("Time Machine"), std::string::npos) << table.out;
}

// An action runs its Linux command, or is refused when it cannot run here. Only the
// user's own steps stand in here: the administrator's run this machine's real tools.
TEST(SystemDataCommand, RunsAnActionOrRefusesOneThatCannotRun) {
    FakeHome home;
    auto installed = [](const char* tool) { return LinuxCommands::isInstalled(tool, Shell::path()); };
    if (installed("updatedb") || installed("flatpak"))
        GTEST_SKIP() << "this machine has updatedb or flatpak, which would run for real";
    // What each step runs is the System Data perform test's; here the command's answer.
    for (const char* tool : {"tracker3", "balooctl"})
        home.installTool(tool, "exit 0");

    const BinaryRun indexes = BinaryRun::of({"system-data", "--run", "spotlight", "--yes"});
    EXPECT_EQ(indexes.status, 0) << indexes.err;
    EXPECT_EQ(indexes.out.rfind("Rebuild Indexes completed — ", 0), 0u) << indexes.out;

    const BinaryRun runtimes = BinaryRun::of({"system-data", "--run", "simruntimes", "--yes"});
    EXPECT_EQ(runtimes.status, 1);
    EXPECT_EQ(runtimes.err, "Remove Unused Runtimes: flatpak is not installed\n");
    EXPECT_EQ(BinaryRun::of({"system-data", "--run", "nothing", "--yes"}).status, 2);
    // Without a terminal to ask on, only --yes runs it.
    EXPECT_EQ(BinaryRun::of({"system-data", "--run", "spotlight"}).status, 2);
}
