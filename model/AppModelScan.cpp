// Scan orchestration: starting, applying events, finishing and stopping a scan.

#include "model/AppModel.h"

#include "model/AppModelChanges.h"
#include "platform/Localized.h"
#include "scanning/JunkScanner.h"

#include <QFile>

#include <cmath>
#include <limits>
#include <memory>
#include <numeric>

int64_t AppModel::largeFileThreshold() const {
    // Gigabytes are binary here (2^30). Out-of-range settings clamp rather than wrap.
    const double bytes = largeThresholdGB_ * 1073741824.0;
    if (std::isnan(bytes))
        return 0;
    if (bytes >= 9.2e18)
        return std::numeric_limits<int64_t>::max();
    if (bytes <= -9.2e18)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(bytes);
}

void AppModel::scan() {
    if (phase_ == Phase::scanning || phase_ == Phase::cleaning)
        return;
    refreshEnvironment();

    Changes changes(*this);
    change(changes, phase_, Phase::scanning, &AppModel::phaseChanged);
    change(changes, statusText_, QString::fromStdString(localized("Starting scan…")),
           &AppModel::statusTextChanged);
    const ItemIDs keeping = selection_;
    ++itemsVersion_;
    change(changes, items_, ScanItems{}, &AppModel::itemsChanged);
    change(changes, itemsByCategory_, ItemsByCategory{}, &AppModel::itemsByCategoryChanged);
    change(changes, categoryState_, CategoryStates{}, &AppModel::categoryStateChanged);
    change(changes, scanningCategory_, QString(), &AppModel::scanningCategoryChanged);
    change(changes, scanProgress_, 0.0, &AppModel::scanProgressChanged);
    change(changes, scanStep_, 0, &AppModel::scanStepChanged);
    change(changes, scanStepCount_, static_cast<int>(categories().size()), &AppModel::scanStepCountChanged);

    ScanOptions options;
    options.largeFileThreshold = largeFileThreshold();
    options.extraRoots = extraRoots_;
    options.hasFullDiskAccess = hasFullDiskAccess_;

    const uint64_t scanID = nextOperation_;
    scanTask_ = startWorker([options, keeping, scanID](std::stop_token stop, const MainThreadCall& toMain) {
        // Every item reaches the model in its category's event, handed over whole.
        JunkScanner::scanHandingOver(
            options,
            [&toMain, scanID](ScanEvent&& event) {
                // Shared, so that handing the call over copies a pointer and not the items.
                auto shared = std::make_shared<ScanEvent>(std::move(event));
                toMain([scanID, shared](AppModel& model) { model.handle(scanID, std::move(*shared)); });
            },
            stop);
        if (stop.stop_requested())
            return;
        toMain([scanID, keeping](AppModel& model) { model.finishScan(scanID, keeping); });
    });
    activeScan_ = scanID;
}

void AppModel::handle(uint64_t scanID, ScanEvent event) {
    if (scanID != activeScan_ || phase_ != Phase::scanning)
        return;
    Changes changes(*this);
    if (const auto* status = std::get_if<ScanEvent::Status>(&event.value)) {
        change(changes, statusText_, QString::fromStdString(status->text), &AppModel::statusTextChanged);
    } else if (const auto* started = std::get_if<ScanEvent::CategoryStarted>(&event.value)) {
        change(changes, scanningCategory_, QString::fromStdString(started->id),
               &AppModel::scanningCategoryChanged);
        change(changes, scanStep_, started->step, &AppModel::scanStepChanged);
        change(changes, scanStepCount_, started->of, &AppModel::scanStepCountChanged);
        if (categoryState_[started->id] != CategoryScanState::scanning) {
            categoryState_[started->id] = CategoryScanState::scanning;
            announce(changes, &AppModel::categoryStateChanged);
        }
    } else if (auto* finished = std::get_if<ScanEvent::CategoryFinished>(&event.value)) {
        // In place and moved: the items are held once, however many categories follow.
        if (!finished->items.empty()) {
            ItemPositions positions(finished->items.size());
            std::iota(positions.begin(), positions.end(), static_cast<uint32_t>(items_.size()));
            // Room made to measure: growth by doubling would hold twice the items.
            if (items_.empty()) {
                items_ = std::move(finished->items);
            } else {
                items_.reserve(items_.size() + finished->items.size());
                items_.insert(items_.end(), std::make_move_iterator(finished->items.begin()),
                              std::make_move_iterator(finished->items.end()));
            }
            announce(changes, &AppModel::itemsChanged);
            ScanResults::sortForDisplay(items_, positions);
            itemsByCategory_[finished->id] = std::move(positions);
            announce(changes, &AppModel::itemsByCategoryChanged);
        } else if (itemsByCategory_.erase(finished->id)) {
            announce(changes, &AppModel::itemsByCategoryChanged);
        }
        if (categoryState_[finished->id] != CategoryScanState::done) {
            categoryState_[finished->id] = CategoryScanState::done;
            announce(changes, &AppModel::categoryStateChanged);
        }
    } else if (const auto* progress = std::get_if<ScanEvent::Progress>(&event.value)) {
        change(changes, scanProgress_, std::max(scanProgress_, progress->value),
               &AppModel::scanProgressChanged);
    }
}

void AppModel::finishScan(uint64_t scanID, const ItemIDs& keeping) {
    if (scanID != activeScan_ || phase_ != Phase::scanning)
        return;
    activeScan_ = 0;
    scanTask_ = 0;
    Changes changes(*this);
    // Every item arrived with its category, in the scanner's order, sorted in place.
    ItemIDs kept;
    for (const ScanItem& item : items_)
        if (keeping.contains(item.id))
            kept.insert(item.id);
    CategoryStates states = categoryState_;
    for (const CleanCategory& category : categories())
        states[category.id] = CategoryScanState::done;
    change(changes, categoryState_, std::move(states), &AppModel::categoryStateChanged);
    change(changes, selection_, std::move(kept), &AppModel::selectionChanged);
    change(changes, scanningCategory_, QString(), &AppModel::scanningCategoryChanged);
    change(changes, scanProgress_, 1.0, &AppModel::scanProgressChanged);
    change(changes, lastScanDate_, std::optional<Date>(Dates::now()), &AppModel::lastScanDateChanged);
    change(changes, phase_, Phase::ready, &AppModel::phaseChanged);
    change(changes, statusText_, QString(), &AppModel::statusTextChanged);
}

void AppModel::cancelScan() {
    if (scanTask_)
        stopWorker(scanTask_);
    scanTask_ = 0;
    activeScan_ = 0;
    Changes changes(*this);
    change(changes, scanningCategory_, QString(), &AppModel::scanningCategoryChanged);
    CategoryStates states = categoryState_;
    for (auto& [id, state] : states)
        if (state == CategoryScanState::scanning)
            state = CategoryScanState::pending;
    change(changes, categoryState_, std::move(states), &AppModel::categoryStateChanged);
    // No phase test: the commands offer a stop only while a scan runs, and the phase
    // always settles on what is listed.
    change(changes, phase_, items_.empty() ? Phase::idle : Phase::ready, &AppModel::phaseChanged);
    if (!items_.empty())
        change(changes, lastScanDate_, std::optional<Date>(Dates::now()), &AppModel::lastScanDateChanged);
    change(changes, statusText_, QString(), &AppModel::statusTextChanged);
}
