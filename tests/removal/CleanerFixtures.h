#pragma once
// Shared by the cleaner suites: one fake home per test process, item builders, a
// recording stand-in for the authorisation tool, and snapshots of whole trees.

#include "catalogue/ScanItem.h"
#include "removal/CleanResult.h"
#include "removal/Shell.h"
#include "support/FakeHome.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
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

struct ToolCall {
    std::string script; // the script file's content when the tool was called
    std::string prompt;
    double timeout = 0;
};

// Installs a stand-in for the authorisation tool that records every call. It either
// runs the script for real (as root through the platform's own tool, which runs
// /bin/sh directly; otherwise `/bin/sh <file>` through Shell::run, as the current
// user) or gives a fixed answer without running anything.
class ScriptRecorder {
public:
    struct RunScripts {};
    explicit ScriptRecorder(RunScripts);
    explicit ScriptRecorder(Shell::Output answer);
    ~ScriptRecorder();
    ScriptRecorder(const ScriptRecorder&) = delete;
    ScriptRecorder& operator=(const ScriptRecorder&) = delete;

    const std::vector<ToolCall>& calls() const { return *calls_; }

private:
    std::shared_ptr<std::vector<ToolCall>> calls_ = std::make_shared<std::vector<ToolCall>>();
};

// The item lines (mv_item / rm_item / run_cmd) of a batch script.
std::vector<std::string> itemLines(const std::string& script);

std::string readFile(const std::string& path);
bool exists(const std::string& path); // lstat: a dangling link exists
mode_t typeOf(const std::string& path);
std::vector<std::string> entriesOf(const std::string& folder); // names, sorted

// Path -> description (type, mode, and for anything but folders size, mtime and a
// content hash or link target) of every entry below `root`, leaving out each path
// in `excluded` with everything below it. Never follows links.
std::map<std::string, std::string> snapshotTree(const std::string& root,
                                                const std::vector<std::string>& excluded);

// Reasons of all failures, for messages and for the non-empty check.
std::vector<std::string> reasonsOf(const CleanResult& result);
bool everyReasonIsNonEmpty(const CleanResult& result);
