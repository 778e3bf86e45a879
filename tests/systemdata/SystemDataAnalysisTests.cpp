#include "systemdata/SystemDataAnalyzer.h"

#include "SystemDataTesting.h"
#include "platform/Environment.h"
#include "removal/Shell.h"

#include <chrono>
#include <dirent.h>
#include <gtest/gtest.h>
#include <mutex>

namespace {

using Clock = std::chrono::steady_clock;

// Every onEntry call, in order, with the time it arrived.
struct Deliveries {
    std::mutex lock;
    std::vector<std::pair<std::string, int64_t>> calls;
    std::map<std::string, Clock::time_point> times;

    SystemDataAnalyzer::EntryCallback callback() {
        return [this](const std::string& id, int64_t value) {
            std::lock_guard guard(lock);
            calls.emplace_back(id, value);
            times.emplace(id, Clock::now());
        };
    }
};

std::vector<std::string> progressFilesLeft() {
    std::vector<std::string> names;
    if (DIR* dir = ::opendir(Environment::temporaryFolder().c_str())) {
        while (const dirent* e = ::readdir(dir))
            if (std::string_view(e->d_name).starts_with("korvane-sd-"))
                names.emplace_back(e->d_name);
        ::closedir(dir);
    }
    return names;
}

// The progress file's path as the script names it (the PROG= line, still quoted).
std::string progressAssignment(const std::string& scriptPath) {
    const std::string script = readFile(scriptPath);
    const size_t start = script.find("\nPROG=") + 1;
    return script.substr(start, script.find('\n', start) - start);
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
    Deliveries deliveries;
    const SystemDataAnalyzer::Analysis analysis = SystemDataAnalyzer::analyze(entries, deliveries.callback());

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

    std::map<std::string, int64_t> delivered(deliveries.calls.begin(), deliveries.calls.end());
    EXPECT_EQ(deliveries.calls.size(), 6u);
    EXPECT_EQ(delivered.erase("tm"), 1u);
    EXPECT_EQ(delivered, expected);
    EXPECT_TRUE(progressFilesLeft().empty());
}

TEST(SystemDataAnalysis, DeliversProgressWhileRunningAndEachIdOnce) {
    sharedHome();
    std::string prompt;
    double timeout = 0;
    bool startedEmpty = false;
    Clock::time_point runEnded;
    ScopedAuthorizationTool tool([&](const std::string& scriptPath, const std::string& p, double t) {
        prompt = p;
        timeout = t;
        const std::string assignment = progressAssignment(scriptPath);
        const Shell::Output probe = Shell::run(assignment + "; test -f \"$PROG\" && ! test -s \"$PROG\"", 10);
        startedEmpty = probe.status == 0;
        Shell::Output out =
            Shell::run(assignment + "; printf 'vm|2048\\n' >> \"$PROG\"; sleep 0.6; "
                                    "printf 'tm|3\\n' >> \"$PROG\"; sleep 0.6; printf 'vm|2048\\ntm|3\\n'",
                       30);
        runEnded = Clock::now();
        return out;
    });
    Deliveries deliveries;
    const auto before = Dates::now();
    const SystemDataAnalyzer::Analysis analysis = SystemDataAnalyzer::analyze(deliveries.callback());

    EXPECT_EQ(prompt, "Veltro needs administrator privileges to measure System Data.");
    EXPECT_EQ(timeout, 900);
    EXPECT_TRUE(startedEmpty);
    EXPECT_EQ(deliveries.calls, (std::vector<std::pair<std::string, int64_t>>{{"vm", 2'097'152}, {"tm", 3}}));
    ASSERT_EQ(deliveries.times.count("tm"), 1u);
    EXPECT_LT(deliveries.times["tm"], runEnded);
    ASSERT_TRUE(analysis.report.has_value());
    EXPECT_EQ(analysis.report->sizes, (std::map<std::string, int64_t>{{"vm", 2'097'152}}));
    EXPECT_EQ(analysis.report->snapshotCount, 3);
    EXPECT_GE(analysis.report->date, before);
    EXPECT_LE(analysis.report->date, Dates::now());
    EXPECT_TRUE(progressFilesLeft().empty());
}

TEST(SystemDataAnalysis, DismissalAndFailureGiveOnlyAMessage) {
    sharedHome();
    {
        ScopedAuthorizationTool tool(answering({1, "", "execution error: User canceled. (-128)"}));
        const auto analysis = SystemDataAnalyzer::analyze({});
        EXPECT_FALSE(analysis.report.has_value());
        EXPECT_EQ(analysis.message, "Authentication was cancelled");
        EXPECT_TRUE(progressFilesLeft().empty());
    }
    {
        // The 200th character is two bytes long: the cut must keep it whole.
        const std::string cut = std::string(199, 'a') + "é";
        ScopedAuthorizationTool tool(answering({1, "dbother|10\n", cut + "tail that is dropped"}));
        const auto analysis = SystemDataAnalyzer::analyze({});
        EXPECT_FALSE(analysis.report.has_value());
        EXPECT_EQ(analysis.message, "Analysis failed: " + cut);
        EXPECT_TRUE(progressFilesLeft().empty());
    }
}
