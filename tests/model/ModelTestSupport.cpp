#include "ModelTestSupport.h"

#include "platform/Paths.h"

#include <QMetaMethod>
#include <QTest>

namespace ModelTest {

bool waitFor(const std::function<bool()>& done, int timeoutMs) {
    return QTest::qWaitFor(done, timeoutMs);
}

::testing::AssertionResult scanToEnd(AppModel& model) {
    model.scan();
    if (model.phase() != AppModel::Phase::scanning)
        return ::testing::AssertionFailure() << "the scan did not start";
    if (!waitFor([&model] { return model.phase() != AppModel::Phase::scanning; }))
        return ::testing::AssertionFailure() << "the scan did not end in time";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult waitForWorkers(AppModel& model) {
    if (!waitFor([&model] { return !model.hasRunningWork(); }))
        return ::testing::AssertionFailure() << "worker threads still running";
    return ::testing::AssertionSuccess();
}

std::string makeCacheFolder(FakeHome& home, const std::string& name, int64_t bytes) {
    home.makeFileOfSize("Library/Caches/" + name + "/data.bin", bytes);
    return idOf(home.path("Library/Caches/" + name));
}

std::string idOf(const std::string& path) {
    return Paths::canonicalPath(path);
}

const ScanItem* find(const ScanItems& items, const std::string& id) {
    for (const ScanItem& item : items)
        if (item.id == id)
            return &item;
    return nullptr;
}

std::vector<std::string> idsOf(const ScanItems& items) {
    std::vector<std::string> ids;
    for (const ScanItem& item : items)
        ids.push_back(item.id);
    return ids;
}

ScanItems itemsOf(const AppModel& model, const std::string& categoryID) {
    const CategoryItems items = model.itemsOf(categoryID);
    return ScanItems(items.begin(), items.end());
}

SignalLog::SignalLog(AppModel& model) {
    const QMetaObject* meta = model.metaObject();
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() != QMetaMethod::Signal)
            continue;
        const std::string name = method.name().toStdString();
        // The two summary notified restate the stored fields' changes.
        if (name == "totalsChanged" || name == "resultsChanged")
            continue;
        spies_.emplace_back(name, std::make_unique<QSignalSpy>(&model, method));
    }
}

int SignalLog::count(const char* signalName) const {
    for (const auto& [name, spy] : spies_)
        if (name == signalName)
            return static_cast<int>(spy->count());
    ADD_FAILURE() << "no signal " << signalName;
    return -1;
}

int SignalLog::total() const {
    int sum = 0;
    for (const auto& [name, spy] : spies_)
        sum += static_cast<int>(spy->count());
    return sum;
}

void SignalLog::clear() {
    for (auto& [name, spy] : spies_)
        spy->clear();
}

} // namespace ModelTest
