#pragma once
// Shared pieces of the model tests: real scans of a fake home driven through the
// event loop, stand-in command-line tools on the children's search path, and
// lookups into the model's lists.

#include "model/AppModel.h"
#include "support/FakeHome.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <functional>
#include <string>
#include <vector>

namespace ModelTest {

// Generous: scans of a fake home take well under a second, but the machine is shared.
constexpr int waitLimitMs = 60000;

// Processes events until `done` holds or the limit passes; returns `done()`.
bool waitFor(const std::function<bool()>& done, int timeoutMs = waitLimitMs);

// Starts a scan and waits until the model has left the scanning phase.
::testing::AssertionResult scanToEnd(AppModel& model);

// Waits until no worker thread of the model is left (a stopped scan winding down,
// a clean, a purge, an analysis).
::testing::AssertionResult waitForWorkers(AppModel& model);

// A folder item ~/Library/Caches/<name> holding one file of `bytes` real bytes, and
// the id the scanner gives it (the canonical path).
std::string makeCacheFolder(FakeHome& home, const std::string& name, int64_t bytes);

// The canonical path of a path of the fake home, as item ids are recorded.
std::string idOf(const std::string& path);

// The item with this id in `items`, or nullptr.
const ScanItem* find(const ScanItems& items, const std::string& id);
std::vector<std::string> idsOf(const ScanItems& items);
ScanItems itemsOf(const AppModel& model, const std::string& categoryID);

// Counts every emission of every notify signal of the model's stored fields, by
// signal name, from construction on.
class SignalLog {
public:
    explicit SignalLog(AppModel& model);
    int count(const char* signalName) const;
    // Emissions of every stored field's signal added up.
    int total() const;
    void clear();

private:
    std::vector<std::pair<std::string, std::unique_ptr<QSignalSpy>>> spies_;
};

} // namespace ModelTest
