#include "systemdata/SystemDataAnalyzer.h"

#include "SystemDataTesting.h"
#include "removal/Shell.h"
#include "systemdata/SystemDataAreas.h"

#include <gtest/gtest.h>
#include <optional>

namespace {

using Calls = std::vector<std::pair<std::string, int64_t>>;

SystemDataAnalyzer::EntryCallback recordingInto(Calls& calls) {
    return [&calls](const std::string& id, int64_t value) { calls.emplace_back(id, value); };
}

int64_t duKibibytes(const std::vector<std::string>& paths) {
    std::string command = "du -skx";
    for (const std::string& path : paths)
        command += " " + shellQuote(path);
    const Shell::Output out = Shell::run(command + " 2>/dev/null | awk '{s+=$1} END {print s+0}'", 60);
    return std::stoll(out.standardOutput);
}

SystemDataEntry measured(std::string id, std::vector<std::string> paths) {
    SystemDataEntry entry;
    entry.id = std::move(id);
    entry.paths = std::move(paths);
    return entry;
}

} // namespace

TEST(SystemDataAnalysis, MeasuresFoldersForRealIncludingQuotedPaths) {
    sharedHome();
    TempTree tree;
    const std::string plain = tree.makeDir("plain");
    tree.makeFileOfSize("plain/a.bin", 200'000);
    tree.makeFileOfSize("plain/deep/b.bin", 50'000);
    const std::string quoted = tree.makeDir("it's mine");
    tree.makeFileOfSize("it's mine/c.bin", 70'000);
    const std::string missing = tree.path("missing");
    sharedHome().makeFileOfSize("Library/Mail/m.eml", 30'000);

    // "deep" lies inside "plain": it is its own row, and no byte counts twice.
    const std::vector<SystemDataEntry> entries{measured("tm", {}),
                                               measured("plain", {plain}),
                                               measured("quoted", {quoted, missing}),
                                               measured("deep", {plain + "/deep"}),
                                               measured("home", {"~/Library/Mail"}),
                                               measured("gone", {missing})};

    ScopedAuthorizationTool tool(realScriptRunner());
    Calls calls;
    const SystemDataAnalyzer::Analysis analysis = SystemDataAnalyzer::analyze(entries, recordingInto(calls));

    ASSERT_FALSE(analysis.message.has_value()) << *analysis.message;
    ASSERT_TRUE(analysis.report.has_value());
    const std::map<std::string, int64_t> expected{
        {"plain", (duKibibytes({plain}) - duKibibytes({plain + "/deep"})) * 1024},
        {"deep", duKibibytes({plain + "/deep"}) * 1024},
        {"quoted", duKibibytes({quoted}) * 1024},
        {"home", duKibibytes({sharedHome().path("Library/Mail")}) * 1024},
        {"gone", 0}};
    EXPECT_GE(expected.at("plain"), 200'000);
    EXPECT_GE(expected.at("deep"), 50'000);
    EXPECT_GE(expected.at("quoted"), 70'000);
    EXPECT_EQ(analysis.report->sizes, expected);
    EXPECT_EQ(analysis.report->snapshotCount, 0);
    EXPECT_EQ(analysis.report->purgeable, 0);

    std::map<std::string, int64_t> delivered(calls.begin(), calls.end());
    EXPECT_EQ(calls.size(), 6u);
    EXPECT_EQ(delivered.erase("tm"), 1u);
    EXPECT_EQ(delivered, expected);
}

// The logs have their own row though they lie in the databases' folder: the report
// takes them away from the databases, never below zero.
TEST(SystemDataAnalysis, TheDatabasesLeaveOutTheLogs) {
    sharedHome();
    const std::vector<std::pair<std::string, std::map<std::string, int64_t>>> cases{
        {"dbother|10\nunifiedlogs|4\n", {{"dbother", 6144}, {"unifiedlogs", 4096}}},
        {"dbother|3\nunifiedlogs|4\n", {{"dbother", 0}, {"unifiedlogs", 4096}}},
        {"dbother|3\n", {{"dbother", 3072}}},
    };
    for (const auto& [output, sizes] : cases) {
        ScopedAuthorizationTool tool(answering({0, output, ""}));
        const auto analysis = SystemDataAnalyzer::analyze({});
        ASSERT_TRUE(analysis.report.has_value()) << output;
        EXPECT_EQ(analysis.report->sizes, sizes) << output;
    }
}

// The helper is asked for the areas' measurement; each line it answers reaches the
// caller at once, each id once.
TEST(SystemDataAnalysis, DeliversEachEntryAsItIsMeasuredAndEachIdOnce) {
    sharedHome();
    Calls calls;
    std::optional<Privileged::Request> asked;
    size_t deliveredWhileRunning = 0;
    ScopedAuthorizationTool tool([&](const Privileged::Launch& launch) {
        asked = launch.request;
        for (const char* line : {"vm|2048", "tm|3", "vm|2048", "no number"})
            launch.onLine(line);
        deliveredWhileRunning = calls.size();
        return Shell::Output{0, "vm|2048\ntm|3\n", ""};
    });
    const auto before = Dates::now();
    const SystemDataAnalyzer::Analysis analysis = SystemDataAnalyzer::analyze(recordingInto(calls));

    ASSERT_TRUE(asked.has_value());
    EXPECT_EQ(asked->mode, WorkList::measureMode);
    EXPECT_EQ(asked->workList,
              WorkList::encode(SystemDataAnalyzer::measuredEntries(SystemDataAreas::entries())));
    EXPECT_EQ(asked->prompt, "Veltro needs administrator privileges to measure System Data.");
    EXPECT_EQ(asked->timeout, 900);
    EXPECT_EQ(calls, (Calls{{"vm", 2'097'152}, {"tm", 3}}));
    EXPECT_EQ(deliveredWhileRunning, 2u);
    ASSERT_TRUE(analysis.report.has_value());
    EXPECT_EQ(analysis.report->sizes, (std::map<std::string, int64_t>{{"vm", 2'097'152}}));
    EXPECT_EQ(analysis.report->snapshotCount, 3);
    EXPECT_GE(analysis.report->date, before);
    EXPECT_LE(analysis.report->date, Dates::now());
}

TEST(SystemDataAnalysis, DismissalAndFailureGiveOnlyAMessage) {
    sharedHome();
    {
        ScopedAuthorizationTool tool(answering({1, "", "execution error: User canceled. (-128)"}));
        const auto analysis = SystemDataAnalyzer::analyze({});
        EXPECT_FALSE(analysis.report.has_value());
        EXPECT_EQ(analysis.message, "Authentication was cancelled");
    }
    {
        // The 200th character is two bytes long: the cut must keep it whole.
        const std::string cut = std::string(199, 'a') + "é";
        ScopedAuthorizationTool tool(answering({1, "dbother|10\n", cut + "tail that is dropped"}));
        const auto analysis = SystemDataAnalyzer::analyze({});
        EXPECT_FALSE(analysis.report.has_value());
        EXPECT_EQ(analysis.message, "Analysis failed: " + cut);
    }
}
