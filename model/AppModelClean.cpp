// The clean flow: confirmation, cleaning, applying the result, emptying what the
// clean moved to the Trash; plus the large-file search folders and copying a path.

#include "model/AppModel.h"

#include "model/AppModelChanges.h"
#include "model/ItemKey.h"
#include "platform/ByteCount.h"
#include "platform/Localized.h"
#include "removal/Cleaner.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QPointer>
#include <QUrl>

#include <algorithm>
#include <memory>

void AppModel::requestClean(const QString& categoryID) {
    {
        Changes changes(*this);
        change(changes, cleanScope_, categoryID, &AppModel::cleanScopeChanged);
    }
    if (phase_ == Phase::scanning || phase_ == Phase::cleaning)
        return;
    // Whether anything is ticked, without copying what is.
    const auto ticked = [this](const ScanItem& item) { return selection_.contains(item.id); };
    const bool any = cleanScope_.isEmpty() ? std::any_of(items_.begin(), items_.end(), ticked)
                                           : std::ranges::any_of(itemsOf(cleanScope_.toStdString()), ticked);
    if (any)
        setShowConfirm(true);
}

void AppModel::clean() {
    ScanItems chosen = itemsToClean();
    if (chosen.empty() || phase_ == Phase::scanning || phase_ == Phase::cleaning)
        return;
    {
        Changes changes(*this);
        change(changes, phase_, Phase::cleaning, &AppModel::phaseChanged);
        change(changes, cleanProgress_, 0.0, &AppModel::cleanProgressChanged);
    }
    startWorker([chosen = std::move(chosen)](std::stop_token, const MainThreadCall& toMain) {
        CleanResult result = Cleaner::clean(chosen, [&toMain](double fraction, const std::string& text) {
            toMain([fraction, text](AppModel& model) {
                Changes changes(model);
                model.change(changes, model.cleanProgress_, fraction, &AppModel::cleanProgressChanged);
                model.change(changes, model.statusText_, QString::fromStdString(text),
                             &AppModel::statusTextChanged);
            });
        });
        auto shared = std::make_shared<CleanResult>(std::move(result));
        toMain([shared](AppModel& model) { model.applyCleanResult(std::move(*shared)); });
    });
}

void AppModel::applyCleanResult(CleanResult result) {
    Changes changes(*this);
    // In place and by hash: removing many succeeded items costs their number, not
    // their number times the list's length.
    ItemIDs removed;
    removed.reserve(result.succeeded.size());
    for (const ScanItem& item : result.succeeded)
        removed.insert(item.id);
    const size_t before = items_.size();
    items_ = ScanResults::without(std::move(items_), removed);
    if (items_.size() != before) {
        ++itemsVersion_;
        announce(changes, &AppModel::itemsChanged);
        itemsByCategory_ = ScanResults::groupedByCategory(items_);
        announce(changes, &AppModel::itemsByCategoryChanged);
    }
    const size_t selected = selection_.size();
    for (const std::string& id : removed)
        selection_.erase(id);
    if (selection_.size() != selected)
        announce(changes, &AppModel::selectionChanged);
    ++resultNumber_;
    change(changes, lastResult_, OptionalCleanResult(std::move(result)), &AppModel::lastResultChanged);
    change(changes, purgeMessage_, QString(), &AppModel::purgeMessageChanged);
    change(changes, disk_, DiskInfo::current(), &AppModel::diskChanged);
    change(changes, phase_, Phase::ready, &AppModel::phaseChanged);
    change(changes, statusText_, QString(), &AppModel::statusTextChanged);
    change(changes, showResult_, true, &AppModel::showResultChanged);
}

void AppModel::purgeLastTrashed() {
    if (!lastResult_ || lastResult_->trashedURLs.empty() || purgingResult_ == resultNumber_)
        return;
    // The purge belongs to the result it started from: a newer clean's list and sheet
    // are not its to change, however late it ends.
    const uint64_t resultNumber = purgingResult_ = resultNumber_;
    startWorker(
        [paths = lastResult_->trashedURLs, resultNumber](std::stop_token, const MainThreadCall& toMain) {
            const Cleaner::PurgeResult purged = Cleaner::purge(paths);
            toMain([purged, resultNumber](AppModel& model) {
                model.applyPurge(resultNumber, purged.freed, purged.failed);
            });
        });
}

void AppModel::applyPurge(uint64_t resultNumber, int64_t freed, int failed) {
    if (purgingResult_ == resultNumber)
        purgingResult_ = 0;
    Changes changes(*this);
    if (lastResult_ && resultNumber == resultNumber_) {
        OptionalCleanResult result = lastResult_;
        result->trashedURLs.clear();
        change(changes, lastResult_, std::move(result), &AppModel::lastResultChanged);
        change(changes, purgeMessage_, purgeText(freed, failed), &AppModel::purgeMessageChanged);
    }
    change(changes, disk_, DiskInfo::current(), &AppModel::diskChanged);
}

QString AppModel::purgeText(int64_t freed, int failed) {
    const std::string size = formatByteCount(freed);
    return QString::fromStdString(failed == 0 ? localizedFormat("Deleted permanently — freed %1", {size})
                                              : localizedFormat("Deleted permanently (%1 failed) — freed %2",
                                                                {std::to_string(failed), size}));
}

void AppModel::setFolderChooser(FolderChooser chooser) {
    folderChooser_ = std::move(chooser);
}

void AppModel::addRoot() {
    if (!folderChooser_)
        return;
    QPointer<AppModel> self(this);
    folderChooser_([self](std::vector<std::string> folders) {
        if (self)
            self->addRoots(folders);
    });
}

void AppModel::addRoots(const std::vector<std::string>& folders) {
    Changes changes(*this);
    RootList roots = extraRoots_;
    for (const std::string& folder : folders)
        if (std::find(roots.begin(), roots.end(), folder) == roots.end())
            roots.push_back(folder);
    change(changes, extraRoots_, std::move(roots), &AppModel::extraRootsChanged);
}

void AppModel::removeRoot(const std::string& folder) {
    Changes changes(*this);
    RootList roots = extraRoots_;
    std::erase(roots, folder);
    change(changes, extraRoots_, std::move(roots), &AppModel::extraRootsChanged);
}

void AppModel::removeRootPath(const QString& path) {
    // The views show roots decoded; match them back to the raw path they came from.
    for (const std::string& root : extraRoots_)
        if (QFile::decodeName(QByteArray::fromStdString(root)) == path) {
            removeRoot(root);
            return;
        }
}

void AppModel::copyPath(const ScanItem& item) {
    auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    if (!application)
        return;
    const std::string text = item.url ? *item.url : item.location();
    auto* data = new QMimeData;
    // The exact bytes, even when the path is not valid UTF-8.
    data->setData(QStringLiteral("text/plain"), QByteArray::fromStdString(text));
    data->setData(QStringLiteral("text/plain;charset=utf-8"), QByteArray::fromStdString(text));
    if (item.url) {
        const QByteArray encoded = QByteArray::fromStdString(*item.url).toPercentEncoding("/");
        data->setData(QStringLiteral("text/uri-list"), "file://" + encoded + "\r\n");
    }
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setMimeData(data);
}

void AppModel::copyItemPath(const QString& key) {
    if (const ScanItem* item = findItem(ItemKey::toID(key)))
        copyPath(*item);
}
