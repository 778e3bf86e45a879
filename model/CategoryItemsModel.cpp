#include "model/CategoryItemsModel.h"

#include "model/AppModel.h"
#include "model/ItemKey.h"

#include <limits>

CategoryItemsModel::CategoryItemsModel(AppModel* model, QObject* parent)
    : QAbstractListModel(parent), model_(model) {
    // Before anything else hears of a change, so that no view reads through stale
    // positions.
    connect(model_, &AppModel::itemsChanged, this, &CategoryItemsModel::reload);
    connect(model_, &AppModel::itemsByCategoryChanged, this, &CategoryItemsModel::reload);
    connect(model_, &AppModel::selectionChanged, this, &CategoryItemsModel::refreshChecks);
}

void CategoryItemsModel::setCategoryId(const QString& id) {
    if (id == categoryId_)
        return;
    categoryId_ = id;
    emit categoryIdChanged();
    reload();
}

void CategoryItemsModel::reload() {
    const ItemPositions& next = model_->itemsOf(categoryId_.toStdString()).positions();
    if (next == positions_ && model_->itemsVersion() == itemsVersion_)
        return;
    const int before = count();
    beginResetModel();
    positions_ = next;
    itemsVersion_ = model_->itemsVersion();
    endResetModel();
    if (count() != before)
        emit countChanged();
}

void CategoryItemsModel::refreshChecks() {
    if (!positions_.empty())
        emit dataChanged(index(0), index(count() - 1), {CheckedRole});
}

int CategoryItemsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

const ScanItem* CategoryItemsModel::itemAt(int row) const {
    if (row < 0 || row >= count())
        return nullptr;
    const uint32_t position = positions_[static_cast<size_t>(row)];
    return position < model_->items().size() ? &model_->items()[position] : nullptr;
}

QVariant CategoryItemsModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const ScanItem* found = itemAt(index.row());
    if (!found)
        return {};
    const ScanItem& item = *found;
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return ItemKey::displayText(item.name);
    case KeyRole:
        return ItemKey::fromID(item.id);
    case PathRole:
        return ItemKey::displayText(item.url ? *item.url : item.location());
    case LocationRole:
        return ItemKey::displayText(item.location());
    case SizeRole:
        return static_cast<qint64>(item.sortSize());
    case ModifiedRole:
        if (!item.modified)
            return QDateTime();
        return QDateTime::fromMSecsSinceEpoch(
            std::chrono::duration_cast<std::chrono::milliseconds>(item.modified->time_since_epoch()).count());
    case HasURLRole:
        return item.url.has_value();
    case MethodRole:
        return QString::fromUtf8(item.method.name());
    case AdminRole:
        return item.method.admin;
    case NoteRole:
        return item.note ? QString::fromStdString(*item.note) : QString();
    case CheckedRole:
        return model_->isSelected(item.id);
    case SortSizeRole:
        return static_cast<qint64>(item.sortSize());
    case SortDateRole:
        if (!item.modified)
            return std::numeric_limits<qint64>::min();
        return static_cast<qint64>(
            std::chrono::duration_cast<std::chrono::milliseconds>(item.modified->time_since_epoch()).count());
    default:
        return {};
    }
}

QHash<int, QByteArray> CategoryItemsModel::roleNames() const {
    return {
        {KeyRole, "key"},           {NameRole, "name"},       {PathRole, "path"},
        {LocationRole, "location"}, {SizeRole, "size"},       {ModifiedRole, "modified"},
        {HasURLRole, "hasURL"},     {MethodRole, "method"},   {AdminRole, "admin"},
        {NoteRole, "note"},         {CheckedRole, "checked"}, {SortSizeRole, "sortSize"},
        {SortDateRole, "sortDate"},
    };
}
