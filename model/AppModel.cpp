#include "model/AppModel.h"

#include "catalogue/CleanupRules.h"
#include "model/AppModelChanges.h"
#include "model/ItemKey.h"
#include "removal/Permissions.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QQmlEngine>

#include <cmath>

#include <utility>

struct AppModel::Worker {
    uint64_t id = 0;
    std::jthread thread;
};

namespace {
AppModel* sharedInstance = nullptr;
}

AppModel::AppModel(QObject* parent)
    : QObject(parent), disk_(DiskInfo::current()), hasFullDiskAccess_(Permissions::hasFullDiskAccess()) {
    if (!sharedInstance)
        sharedInstance = this;
    categoryList_ = new CategoryListModel(this, this);
    categoryItems_ = new CategoryItemsModel(this, this);
    categoryTable_ = new CategoryItemsProxy(this);
    categoryTable_->setSourceModel(categoryItems_);
}

AppModel::~AppModel() {
    if (sharedInstance == this)
        sharedInstance = nullptr;
    // Stop what can stop; a clean cannot, and is waited for.
    for (Worker& worker : workers_)
        worker.thread.request_stop();
    workers_.clear();
}

AppModel* AppModel::instance() {
    return sharedInstance;
}

AppModel* AppModel::create(QQmlEngine*, QJSEngine*) {
    AppModel* model = sharedInstance;
    if (model)
        QQmlEngine::setObjectOwnership(model, QQmlEngine::CppOwnership);
    return model;
}

uint64_t AppModel::startWorker(std::function<void(std::stop_token, const MainThreadCall&)> work) {
    const uint64_t id = nextOperation_++;
    QPointer<AppModel> self(this);
    QObject* context = QCoreApplication::instance();
    MainThreadCall toMain = [self, context](std::function<void(AppModel&)> call) {
        if (!context)
            return;
        QMetaObject::invokeMethod(
            context,
            [self, call = std::move(call)]() {
                if (self)
                    call(*self);
            },
            Qt::QueuedConnection);
    };
    Worker& worker = workers_.emplace_back();
    worker.id = id;
    worker.thread = std::jthread([work = std::move(work), toMain, id](std::stop_token stop) {
        work(stop, toMain);
        toMain([id](AppModel& model) { model.retireWorker(id); });
    });
    return id;
}

void AppModel::retireWorker(uint64_t id) {
    // The worker's last act was to queue this call, so joining returns at once.
    workers_.remove_if([id](const Worker& worker) { return worker.id == id; });
}

void AppModel::stopWorker(uint64_t id) {
    for (Worker& worker : workers_)
        if (worker.id == id)
            worker.thread.request_stop();
}

const std::vector<CleanCategory>& AppModel::categories() const {
    return CleanupRules::categories();
}

void AppModel::setLargeThresholdGB(double gigabytes) {
    // Not a size: refused, rather than a threshold every file passes.
    if (!std::isfinite(gigabytes) || gigabytes < 0)
        return;
    Changes changes(*this);
    change(changes, largeThresholdGB_, gigabytes, &AppModel::largeThresholdGBChanged);
}

QDateTime AppModel::lastScanDate() const {
    if (!lastScanDate_)
        return {};
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(lastScanDate_->time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(ms.count());
}

void AppModel::setShowConfirm(bool shown) {
    Changes changes(*this);
    change(changes, showConfirm_, shown, &AppModel::showConfirmChanged);
}

void AppModel::setShowResult(bool shown) {
    Changes changes(*this);
    change(changes, showResult_, shown, &AppModel::showResultChanged);
}

qint64 AppModel::foundTotal() const {
    return ScanResults::totalSize(items_);
}

qint64 AppModel::selectedTotal() const {
    qint64 sum = 0;
    if (!selection_.empty())
        for (const ScanItem& item : items_)
            if (selection_.contains(item.id))
                sum += item.size.value_or(0);
    return sum;
}

QStringList AppModel::extraRootPaths() const {
    QStringList paths;
    for (const std::string& root : extraRoots_)
        paths.append(QFile::decodeName(QByteArray::fromStdString(root)));
    return paths;
}

void AppModel::refreshEnvironment() {
    Changes changes(*this);
    change(changes, disk_, DiskInfo::current(), &AppModel::diskChanged);
    change(changes, hasFullDiskAccess_, Permissions::hasFullDiskAccess(),
           &AppModel::hasFullDiskAccessChanged);
    refreshSystemTools();
}
