#include "systemdata/SystemDataAnalyzer.h"

#include "SystemDataTesting.h"
#include "removal/Shell.h"

#include <gtest/gtest.h>
#include <optional>

namespace {

using Calls = std::vector<std::pair<std::string, int64_t>>;
using Sizes = std::map<std::string, int64_t>;

SystemDataAnalyzer::EntryCallback recordingInto(Calls& calls) {
    return [&calls](const std::string& id, int64_t value) { calls.emplace_back(id, value); };
}

SystemDataEntry measured(std::string id, std::vector<std::string> paths) {
    SystemDataEntry entry;
    entry.id = std::move(id);
    entry.paths = std::move(paths);
    return entry;
}

} // namespace

// Quoted and missing folders are the helper's own test; here the rows as the analyzer
// builds them, the home expanded and a nested row left out of the one that holds it.
TEST(SystemDataAnalysis, MeasuresFoldersForRealWithoutCountingANestedRowTwice) {
    sharedHome();
    TempTree tree;
    const std::string plain = tree.makeDir("plain");
    tree.makeFileOfSize("plain/a.bin", 200'000);
    tree.makeFileOfSize("plain/deep/b.bin", 50'000);
    sharedHome().makeFileOfSize("Library/Mail/m.eml", 30'000);

    // "deep" lies inside "plain": it is its own row, and no byte counts twice.
    const std::vector<SystemDataEntry> entries{measured("tm", {}), measured("plain", {plain}),
                                               measured("deep", {plain + "/deep"}),
                                               measured("home", {"~/Library/Mail"})};

    // Each line reaching the caller as it comes is the stand-in test's below.
    ScopedAuthorizationTool tool(realScriptRunner());
    const SystemDataAnalyzer::Analysis analysis = SystemDataAnalyzer::analyze(entries, {});

    ASSERT_FALSE(analysis.message.has_value()) << *analysis.message;
    ASSERT_TRUE(analysis.report.has_value());
    const Sizes expected{{"plain", (duKibibytes({plain}) - duKibibytes({plain + "/deep"})) * 1024},
                         {"deep", duKibibytes({plain + "/deep"}) * 1024},
                         {"home", duKibibytes({sharedHome().path("Library/Mail")}) * 1024}};
    EXPECT_GE(expected.at("plain"), 200'000);
    EXPECT_GE(expected.at("deep"), 50'000);
    EXPECT_EQ(analysis.report->sizes, expected);
    EXPECT_EQ(analysis.report->snapshotCount, 0);
    EXPECT_EQ(analysis.report->purgeable, 0);
}

// What the helper's answer becomes. The logs have their own row though they lie in the
// databases' folder: the report takes them away from the databases, never below zero.
// A dismissed dialog or a failed run gives only a message, cut at 200 characters
// without splitting the last one.
TEST(SystemDataAnalysis, AnswersGiveSizesWithTheLogsLeftOutOfTheDatabasesOrOnlyAMessage) {
    sharedHome();
    const std::string cut = std::string(199, 'a') + "\u00e9";
    struct Case {
        Shell::Output answer;
        Sizes sizes;
        std::optional<std::string> message;
    };
    const std::vector<Case> cases{
        {{0, "dbother|10\nunifiedlogs|4\n", ""}, {{"dbother", 6144}, {"unifiedlogs", 4096}}, std::nullopt},
        {{0, "dbother|3\nunifiedlogs|4\n", ""}, {{"dbother", 0}, {"unifiedlogs", 4096}}, std::nullopt},
        {{0, "dbother|3\n", ""}, {{"dbother", 3072}}, std::nullopt},
        {{1, "", "execution error: User canceled. (-128)"}, {}, "Authentication was cancelled"},
        {{1, "dbother|10\n", cut + "tail that is dropped"}, {}, "Analysis failed: " + cut},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer.standardOutput + c.answer.standardError);
        ScopedAuthorizationTool tool(answering(c.answer));
        const auto analysis = SystemDataAnalyzer::analyze({});
        EXPECT_EQ(analysis.message, c.message);
        EXPECT_EQ(analysis.report.has_value(), !c.message);
        EXPECT_EQ(analysis.report ? analysis.report->sizes : Sizes{}, c.sizes);
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
    EXPECT_EQ(asked->prompt, "Veltro needs administrator privileges to measure System Data.");
    EXPECT_EQ(asked->timeout, 900);
    EXPECT_EQ(calls, (Calls{{"vm", 2'097'152}, {"tm", 3}}));
    EXPECT_EQ(deliveredWhileRunning, 2u);
    ASSERT_TRUE(analysis.report.has_value());
    EXPECT_EQ(analysis.report->sizes, (Sizes{{"vm", 2'097'152}}));
    EXPECT_EQ(analysis.report->snapshotCount, 3);
    EXPECT_GE(analysis.report->date, before);
    EXPECT_LE(analysis.report->date, Dates::now());
}
