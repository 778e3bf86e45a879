#include "scanning/Measurement.h"

#include "support/ProcessCounts.h"
#include "support/TempTree.h"

#include <gtest/gtest.h>

#include <set>

namespace {

std::vector<Candidate> folderCandidates(const TempTree& tree, int count) {
    std::vector<Candidate> candidates;
    for (int i = 0; i < count; ++i) {
        const std::string folder = tree.makeDir("c" + std::to_string(i));
        tree.makeFileOfSize("c" + std::to_string(i) + "/data", 1000 + 3000 * (i % 20));
        candidates.push_back(Candidate{"user.caches", folder, RemovalMethod::trash(), std::nullopt,
                                       std::nullopt, std::nullopt});
    }
    return candidates;
}

} // namespace

TEST(Measurement, KeepsOnlyWhatOccupiesSpace) {
    TempTree tree;
    const std::string full = tree.makeFile("full/data", "data");
    tree.makeDir("empty");
    tree.makeFile("zero");
    tree.makeSymlink("link", tree.path("full"));
    const Date date = Dates::now();
    std::vector<Candidate> candidates;
    for (const char* name : {"full", "empty", "zero", "link", "missing"})
        candidates.push_back(
            Candidate{"dev.derived", tree.path(name), RemovalMethod::trash(), date, "hint", std::nullopt});

    const std::vector<ScanItem> items = Measurement::measure(candidates, {}, {});

    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0], (ScanItem{tree.path("full"), "dev.derived", "full", tree.path("full"),
                                  allocatedBytes(full), date, RemovalMethod::trash(), "hint"}));
}

TEST(Measurement, RunsAtMostEightAtOnceAndReportsEveryTenth) {
    TempTree tree;
    const std::vector<Candidate> candidates = folderCandidates(tree, 95);
    const int before = threadCount();
    std::vector<std::pair<size_t, size_t>> calls;
    int mostThreads = 0;

    const std::vector<ScanItem> items = Measurement::measure(candidates,
                                                             [&](size_t done, size_t total) {
                                                                 calls.emplace_back(done, total);
                                                                 mostThreads =
                                                                     std::max(mostThreads, threadCount());
                                                             },
                                                             {});

    ASSERT_GT(before, 0);
    EXPECT_LE(mostThreads, before + 8);
    EXPECT_EQ(items.size(), 95u);
    std::set<std::string> ids;
    for (const ScanItem& item : items) {
        ids.insert(item.id);
        // Measured side by side, each still gets its own tree's figure.
        EXPECT_EQ(item.size, allocatedBytes(item.id + "/data")) << item.id;
    }
    EXPECT_EQ(ids.size(), 95u);
    std::vector<std::pair<size_t, size_t>> expected;
    for (size_t done = 10; done <= 90; done += 10)
        expected.emplace_back(done, 95);
    expected.emplace_back(95, 95);
    EXPECT_EQ(calls, expected);
}

TEST(Measurement, StartsNothingNewAfterAStop) {
    TempTree tree;
    const std::vector<Candidate> candidates = folderCandidates(tree, 60);
    std::stop_source stop;

    const std::vector<ScanItem> items = Measurement::measure(
        candidates,
        [&](size_t done, size_t) {
            if (done == 10)
                stop.request_stop();
        },
        stop.get_token());

    // The ten finished and at most the seven others then running.
    EXPECT_GE(items.size(), 10u);
    EXPECT_LE(items.size(), 17u);
}
