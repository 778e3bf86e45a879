#pragma once
// Shared by the cleaner suites: one fake home per test process, item builders, and
// the batch script's item lines.

#include "catalogue/ScanItem.h"
#include "removal/CleanResult.h"
#include "support/AuthorizationToolStandIn.h"
#include "support/FakeHome.h"
#include "support/PathQueries.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The fake home of this test process. The home and temporary folders (and the
// protected paths built from them) are read once per process, so every cleaner test
// uses this one home; each test works in its own folder inside it.
FakeHome& cleanerHome();

// Base fixture: skips when another suite of this process read the home folder first
// (ctest runs each test alone, where that never happens), gives the test a folder of
// its own, `area`, below ~/Library/Caches, and an empty Trash, and restores the
// platform's authorisation tool afterwards.
class CleanerHomeTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Creates a file or folder (with parents) at `relative` inside `area`.
    std::string areaFile(const std::string& relative, const std::string& content = {}) const;
    std::string areaDir(const std::string& relative) const;

    FakeHome& home = cleanerHome();
    std::string area;
};

ScanItem pathItem(const std::string& path, RemovalMethod method, std::optional<int64_t> size = std::nullopt);
ScanItem commandItem(const std::string& id, const std::string& command, bool admin);

// The item lines (mv_item / rm_item / run_cmd) of a batch script.
std::vector<std::string> itemLines(const std::string& script);

// Reasons of all failures, for messages.
std::vector<std::string> reasonsOf(const CleanResult& result);
