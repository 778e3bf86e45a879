#pragma once
// The one long-lived object of the application: scan results, per-category scan
// state, selection, the clean flow and System Data state, shared by every view.
// Confined to the main thread; engine work runs on worker threads and comes back
// as queued calls tagged with the operation it belongs to, so stale results of a
// cancelled scan are dropped. Every property notifies only when its value changes.

#include "catalogue/CleanCategory.h"
#include "model/CategoryItemsModel.h"
#include "model/CategoryItemsProxy.h"
#include "model/CategoryListModel.h"
#include "model/ScanResults.h"
#include "removal/CleanResult.h"
#include "scanning/DiskInfo.h"
#include "scanning/ScanEvent.h"
#include "systemdata/SystemDataEntry.h"
#include "systemdata/SystemDataReport.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqml.h>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

class QQmlEngine;
class QJSEngine;

class AppModel : public QObject {
    Q_OBJECT
    // Reaches QML as the singleton AppModel through AppModelSingleton below.
    QML_ANONYMOUS

public:
    enum class Phase { idle, scanning, ready, cleaning };
    Q_ENUM(Phase)
    enum class CategoryScanState { pending, scanning, done };
    Q_ENUM(CategoryScanState)

    using CategoryStates = std::map<std::string, CategoryScanState>;
    using RootList = std::vector<std::string>;
    using OptionalCleanResult = std::optional<CleanResult>;
    using OptionalSystemReport = std::optional<SystemDataReport>;
    // Shows a folder chooser and calls back with the chosen folders (raw paths) when
    // the user confirms; never calls back when the chooser is dismissed.
    using FolderChooser = std::function<void(std::function<void(std::vector<std::string>)> onChosen)>;

    // Stored fields.
    Q_PROPERTY(Phase phase READ phase NOTIFY phaseChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)
    Q_PROPERTY(double cleanProgress READ cleanProgress NOTIFY cleanProgressChanged)
    Q_PROPERTY(ScanItems items READ items NOTIFY itemsChanged)
    Q_PROPERTY(ItemsByCategory itemsByCategory READ itemsByCategory NOTIFY itemsByCategoryChanged)
    Q_PROPERTY(ItemIDs selection READ selection NOTIFY selectionChanged)
    Q_PROPERTY(double largeThresholdGB READ largeThresholdGB WRITE setLargeThresholdGB NOTIFY
                   largeThresholdGBChanged)
    Q_PROPERTY(RootList extraRoots READ extraRoots NOTIFY extraRootsChanged)
    Q_PROPERTY(DiskInfo disk READ disk NOTIFY diskChanged)
    Q_PROPERTY(bool hasFullDiskAccess READ hasFullDiskAccess NOTIFY hasFullDiskAccessChanged)
    Q_PROPERTY(QDateTime lastScanDate READ lastScanDate NOTIFY lastScanDateChanged)
    Q_PROPERTY(OptionalCleanResult lastResult READ lastResult NOTIFY lastResultChanged)
    Q_PROPERTY(bool showConfirm READ showConfirm WRITE setShowConfirm NOTIFY showConfirmChanged)
    Q_PROPERTY(bool showResult READ showResult WRITE setShowResult NOTIFY showResultChanged)
    Q_PROPERTY(QString purgeMessage READ purgeMessage NOTIFY purgeMessageChanged)
    Q_PROPERTY(CategoryStates categoryState READ categoryState NOTIFY categoryStateChanged)
    Q_PROPERTY(QString scanningCategory READ scanningCategory NOTIFY scanningCategoryChanged)
    Q_PROPERTY(int scanStep READ scanStep NOTIFY scanStepChanged)
    Q_PROPERTY(int scanStepCount READ scanStepCount NOTIFY scanStepCountChanged)
    Q_PROPERTY(double scanProgress READ scanProgress NOTIFY scanProgressChanged)
    Q_PROPERTY(QString cleanScope READ cleanScope NOTIFY cleanScopeChanged)
    Q_PROPERTY(OptionalSystemReport systemReport READ systemReport NOTIFY systemReportChanged)
    Q_PROPERTY(bool systemAnalyzing READ systemAnalyzing NOTIFY systemAnalyzingChanged)
    Q_PROPERTY(QString systemMessage READ systemMessage NOTIFY systemMessageChanged)
    Q_PROPERTY(QString systemRunningEntry READ systemRunningEntry NOTIFY systemRunningEntryChanged)
    Q_PROPERTY(
        bool systemSnapshotsMeasured READ systemSnapshotsMeasured NOTIFY systemSnapshotsMeasuredChanged)

    // Values derived for the views.
    Q_PROPERTY(qint64 diskTotal READ diskTotal NOTIFY diskChanged)
    Q_PROPERTY(qint64 diskAvailable READ diskAvailable NOTIFY diskChanged)
    Q_PROPERTY(bool hasLastScan READ hasLastScan NOTIFY lastScanDateChanged)
    Q_PROPERTY(int itemCount READ itemCount NOTIFY itemsChanged)
    Q_PROPERTY(int selectionCount READ selectionCount NOTIFY selectionChanged)
    Q_PROPERTY(qint64 foundTotal READ foundTotal NOTIFY itemsChanged)
    Q_PROPERTY(qint64 selectedTotal READ selectedTotal NOTIFY totalsChanged)
    Q_PROPERTY(QStringList extraRootPaths READ extraRootPaths NOTIFY extraRootsChanged)
    Q_PROPERTY(bool hasLastResult READ hasLastResult NOTIFY lastResultChanged)
    Q_PROPERTY(bool hasSystemReport READ hasSystemReport NOTIFY systemReportChanged)
    Q_PROPERTY(QVariantList ranking READ ranking NOTIFY resultsChanged)
    Q_PROPERTY(QVariantList largestItems READ largestItems NOTIFY resultsChanged)
    Q_PROPERTY(QVariantMap cleanPlan READ cleanPlan NOTIFY resultsChanged)
    Q_PROPERTY(QVariantMap lastResultInfo READ lastResultInfo NOTIFY lastResultChanged)
    Q_PROPERTY(QVariantList systemEntries READ systemEntries NOTIFY systemToolsChanged)
    Q_PROPERTY(QVariantMap systemSizes READ systemSizes NOTIFY systemReportChanged)
    Q_PROPERTY(int systemSnapshotCount READ systemSnapshotCount NOTIFY systemReportChanged)
    Q_PROPERTY(qint64 systemPurgeable READ systemPurgeable NOTIFY systemReportChanged)
    Q_PROPERTY(qint64 systemMeasuredTotal READ systemMeasuredTotal NOTIFY systemReportChanged)
    Q_PROPERTY(CategoryListModel* categoryList READ categoryList CONSTANT)
    Q_PROPERTY(CategoryItemsModel* categoryItems READ categoryItems CONSTANT)
    Q_PROPERTY(CategoryItemsProxy* categoryTable READ categoryTable CONSTANT)

public:
    explicit AppModel(QObject* parent = nullptr);
    ~AppModel() override;

    // The instance main() owns, handed to QML as the singleton.
    static AppModel* instance();
    static AppModel* create(QQmlEngine* engine, QJSEngine* scriptEngine);

    // Stored fields.
    Phase phase() const { return phase_; }
    QString statusText() const { return statusText_; }
    double cleanProgress() const { return cleanProgress_; }
    const ScanItems& items() const { return items_; }
    const ItemsByCategory& itemsByCategory() const { return itemsByCategory_; }
    // Changes whenever `items` changes other than by new items at its end, so that
    // positions into it taken earlier are no longer valid.
    uint64_t itemsVersion() const { return itemsVersion_; }
    const ItemIDs& selection() const { return selection_; }
    double largeThresholdGB() const { return largeThresholdGB_; }
    void setLargeThresholdGB(double gigabytes);
    const RootList& extraRoots() const { return extraRoots_; }
    DiskInfo disk() const { return disk_; }
    bool hasFullDiskAccess() const { return hasFullDiskAccess_; }
    QDateTime lastScanDate() const;
    std::optional<Date> lastScanTime() const { return lastScanDate_; }
    const OptionalCleanResult& lastResult() const { return lastResult_; }
    bool showConfirm() const { return showConfirm_; }
    void setShowConfirm(bool shown);
    bool showResult() const { return showResult_; }
    void setShowResult(bool shown);
    QString purgeMessage() const { return purgeMessage_; }
    const std::vector<CleanCategory>& categories() const;
    const CategoryStates& categoryState() const { return categoryState_; }
    QString scanningCategory() const { return scanningCategory_; }
    int scanStep() const { return scanStep_; }
    int scanStepCount() const { return scanStepCount_; }
    double scanProgress() const { return scanProgress_; }
    QString cleanScope() const { return cleanScope_; }
    const OptionalSystemReport& systemReport() const { return systemReport_; }
    bool systemAnalyzing() const { return systemAnalyzing_; }
    QString systemMessage() const { return systemMessage_; }
    QString systemRunningEntry() const { return systemRunningEntry_; }
    bool systemSnapshotsMeasured() const { return systemSnapshotsMeasured_; }

    // Derived values.
    qint64 diskTotal() const { return disk_.total; }
    qint64 diskAvailable() const { return disk_.available; }
    bool hasLastScan() const { return lastScanDate_.has_value(); }
    int itemCount() const { return static_cast<int>(items_.size()); }
    int selectionCount() const { return static_cast<int>(selection_.size()); }
    qint64 foundTotal() const;
    qint64 selectedTotal() const;
    QStringList extraRootPaths() const;
    bool hasLastResult() const { return lastResult_.has_value(); }
    bool hasSystemReport() const { return systemReport_.has_value(); }
    CategoryListModel* categoryList() const { return categoryList_; }
    CategoryItemsModel* categoryItems() const { return categoryItems_; }
    CategoryItemsProxy* categoryTable() const { return categoryTable_; }

    // Scan orchestration.
    Q_INVOKABLE void scan();
    Q_INVOKABLE void cancelScan();
    Q_INVOKABLE void refreshEnvironment();

    // Selection and totals. Category and group ids are plain ASCII; item ids are raw
    // bytes, reached from the views through ItemKey keys.
    std::vector<CleanCategory> categoriesOf(CategoryGroup group) const;
    std::optional<CleanCategory> category(const QString& id) const;
    Q_INVOKABLE qint64 totalSize(const QString& categoryID) const;
    Q_INVOKABLE qint64 selectedSize(const QString& categoryID) const;
    Q_INVOKABLE int selectedCount(const QString& categoryID) const;
    Q_INVOKABLE int itemCountOf(const QString& categoryID) const;
    qint64 totalSize(CategoryGroup group) const;
    CategoryScanState state(CategoryGroup group) const;
    CategoryScanState stateOf(const QString& categoryID) const;
    ScanItems selectedItems() const;
    ScanItems itemsToClean() const;
    qint64 itemsToCleanTotal() const;
    const ScanItem* findItem(const std::string& id) const;
    // A category's items in display order; none for an unknown id.
    CategoryItems itemsOf(const std::string& categoryID) const;

    void setSelected(const std::string& id, bool on);
    Q_INVOKABLE void setAll(const QString& categoryID, bool on);
    Q_INVOKABLE void selectRecommended();
    Q_INVOKABLE void clearSelection();
    bool isSelected(const std::string& id) const { return selection_.contains(id); }

    // Clean flow. An empty category means all ticked items.
    Q_INVOKABLE void requestClean(const QString& categoryID = QString());
    Q_INVOKABLE void clean();
    Q_INVOKABLE void purgeLastTrashed();
    Q_INVOKABLE void addRoot();
    void addRoots(const std::vector<std::string>& folders);
    void removeRoot(const std::string& folder);
    void copyPath(const ScanItem& item);
    void setFolderChooser(FolderChooser chooser);
    // The outcome line of a purge that freed `freed` bytes and could not delete
    // `failed` locations.
    static QString purgeText(int64_t freed, int failed);

    // System Data.
    Q_INVOKABLE void analyzeSystemData();
    // Does nothing for an entry without an action or whose tool is not installed.
    void runSystemAction(const SystemDataEntry& entry);
    // Looks again which System Data actions have their tools installed.
    void refreshSystemTools();

    // View-facing forms of the operations above.
    Q_INVOKABLE void setItemSelected(const QString& key, bool on);
    Q_INVOKABLE bool isItemSelected(const QString& key) const;
    Q_INVOKABLE void removeRootPath(const QString& path);
    Q_INVOKABLE void copyItemPath(const QString& key);
    Q_INVOKABLE void runSystemActionFor(const QString& entryID);
    Q_INVOKABLE QStringList categoryIDsOf(const QString& group) const;
    Q_INVOKABLE qint64 groupTotalSize(const QString& group) const;
    Q_INVOKABLE int groupState(const QString& group) const;
    Q_INVOKABLE int categoryScanState(const QString& categoryID) const;

    // Read-only shapes for the views (model/AppModelViews.cpp).
    // Top 8 categories by size among the finished, non-empty ones: categoryId, title,
    // symbol, group, tint, total, fraction (of the largest), count, checked.
    QVariantList ranking() const;
    // Top 8 items by size that are not commands and have a known positive size: key,
    // name, path, location, size, hasURL, categoryId, categoryTitle, tint, checked.
    QVariantList largestItems() const;
    // The confirmation's figures for itemsToClean: scopeTitle, count, total, trashCount,
    // trashSize, permanentCount, permanentSize, commandNames, adminCount, largeCount,
    // reviewCount.
    QVariantMap cleanPlan() const;
    // lastResult for the views: present, succeededCount, movedToTrashBytes, deletedBytes,
    // gain (freeAfter - freeBefore), trashedCount, failures [{id, name, reason, path}].
    QVariantMap lastResultInfo() const;
    // The System Data areas: id, title, detail, symbol, hasAction, actionTitle,
    // actionConfirm, protectedNote, unavailableNote (the missing tool, "" when the action
    // can run), paths (expanded).
    QVariantList systemEntries() const;
    QVariantMap systemSizes() const;
    int systemSnapshotCount() const;
    qint64 systemPurgeable() const;
    qint64 systemMeasuredTotal() const;
    // A category for the views (same keys as the category list's roles), or {} when
    // the id is unknown.
    Q_INVOKABLE QVariantMap categoryInfo(const QString& categoryID) const;
    // The one folder every non-command item of the category lies in, or "".
    Q_INVOKABLE QString commonLocation(const QString& categoryID) const;
    // The first of a System Data entry's folders that exists, or "".
    Q_INVOKABLE QString firstExistingPath(const QString& entryID) const;

    // True while worker threads still run (a scan winding down after a stop, a clean,
    // a purge, an analysis); the application uses it to end promptly at exit.
    bool hasRunningWork() const { return !workers_.empty(); }

signals:
    void phaseChanged();
    void statusTextChanged();
    void cleanProgressChanged();
    void itemsChanged();
    void itemsByCategoryChanged();
    void selectionChanged();
    void largeThresholdGBChanged();
    void extraRootsChanged();
    void diskChanged();
    void hasFullDiskAccessChanged();
    void lastScanDateChanged();
    void lastResultChanged();
    void showConfirmChanged();
    void showResultChanged();
    void purgeMessageChanged();
    void categoryStateChanged();
    void scanningCategoryChanged();
    void scanStepChanged();
    void scanStepCountChanged();
    void scanProgressChanged();
    void cleanScopeChanged();
    void systemReportChanged();
    void systemAnalyzingChanged();
    void systemMessageChanged();
    void systemRunningEntryChanged();
    void systemSnapshotsMeasuredChanged();
    void systemToolsChanged();
    // Items or selection changed, so selected totals may have.
    void totalsChanged();
    // Anything the result views derive from changed: items, their grouping,
    // selection, scan states or the clean scope.
    void resultsChanged();

private:
    using Signal = void (AppModel::*)();
    class Changes;
    struct Worker;

    template <class T> void change(Changes& changes, T& field, T value, Signal signal);
    // For a field changed in place (too large to copy for a comparison).
    void announce(Changes& changes, Signal signal);

    void handle(uint64_t scan, ScanEvent event);
    void finishScan(uint64_t scan, const ItemIDs& keeping);
    void applyCleanResult(CleanResult result);
    void applyPurge(uint64_t resultNumber, int64_t freed, int failed);
    void deliverSystemEntry(uint64_t analysis, const std::string& id, int64_t value);
    void finishSystemAnalysis(uint64_t analysis, std::optional<SystemDataReport> report,
                              std::optional<std::string> message);
    void finishSystemAction(const SystemDataEntry& entry, int64_t availableBefore,
                            const std::optional<std::string>& message);
    int64_t largeFileThreshold() const;

    // Starts `work` on a worker thread; it receives the thread's stop token and a
    // function that queues a call on the main thread (dropped if the model is gone).
    using MainThreadCall = std::function<void(std::function<void(AppModel&)>)>;
    uint64_t startWorker(std::function<void(std::stop_token, const MainThreadCall&)> work);
    void retireWorker(uint64_t id);
    void stopWorker(uint64_t id);

    Phase phase_ = Phase::idle;
    QString statusText_;
    double cleanProgress_ = 0;
    ScanItems items_;
    ItemsByCategory itemsByCategory_;
    ItemIDs selection_;
    double largeThresholdGB_ = 1.0;
    RootList extraRoots_;
    DiskInfo disk_;
    bool hasFullDiskAccess_ = false;
    std::optional<Date> lastScanDate_;
    OptionalCleanResult lastResult_;
    bool showConfirm_ = false;
    bool showResult_ = false;
    QString purgeMessage_;
    CategoryStates categoryState_;
    QString scanningCategory_;
    int scanStep_ = 0;
    int scanStepCount_ = 0;
    double scanProgress_ = 0;
    QString cleanScope_;
    OptionalSystemReport systemReport_;
    bool systemAnalyzing_ = false;
    QString systemMessage_;
    QString systemRunningEntry_;
    bool systemSnapshotsMeasured_ = false;
    std::map<std::string, std::string> systemUnavailable_; // as last looked at

    uint64_t itemsVersion_ = 0;
    uint64_t scanTask_ = 0;       // worker id of the running scan, 0 when none
    uint64_t activeScan_ = 0;     // the scan whose events are applied, 0 when none
    uint64_t activeAnalysis_ = 0; // likewise for System Data deliveries
    uint64_t nextOperation_ = 1;
    uint64_t resultNumber_ = 0;  // counts the cleans applied; names lastResult_
    uint64_t purgingResult_ = 0; // the result a running purge started from, 0 when none
    FolderChooser folderChooser_;
    std::list<Worker> workers_;

    CategoryListModel* categoryList_ = nullptr;
    CategoryItemsModel* categoryItems_ = nullptr;
    CategoryItemsProxy* categoryTable_ = nullptr;
};

// QML's name for the model. Qt 6.4 default-constructs a default-constructible
// singleton rather than asking its create(), which would give QML a second, empty
// model; registering through this wrapper makes QML ask AppModel::create().
struct AppModelSingleton {
    Q_GADGET
    QML_FOREIGN(AppModel)
    QML_NAMED_ELEMENT(AppModel)
    QML_SINGLETON

public:
    static AppModel* create(QQmlEngine* engine, QJSEngine* scriptEngine) {
        return AppModel::create(engine, scriptEngine);
    }
};
