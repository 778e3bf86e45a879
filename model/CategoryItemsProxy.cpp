#include "model/CategoryItemsProxy.h"

#include "model/CategoryItemsModel.h"
#include "model/ItemKey.h"

#include <QLocale>

CategoryItemsProxy::CategoryItemsProxy(QObject* parent) : QSortFilterProxyModel(parent) {
    // The C locale's collation is plain code-point order, without numbers by value;
    // a session without a locale still gets the common order.
    if (QLocale().language() == QLocale::C)
        collator_.setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    collator_.setNumericMode(true);
    collator_.setCaseSensitivity(Qt::CaseInsensitive);
    setDynamicSortFilter(true);
    connect(this, &QAbstractItemModel::rowsInserted, this, &CategoryItemsProxy::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &CategoryItemsProxy::countChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &CategoryItemsProxy::countChanged);
    connect(this, &QAbstractItemModel::layoutChanged, this, &CategoryItemsProxy::countChanged);
    connect(this, &QAbstractProxyModel::sourceModelChanged, this, [this] {
        forgetNameKeys();
        if (QAbstractItemModel* source = sourceModel()) {
            connect(source, &QAbstractItemModel::modelAboutToBeReset, this,
                    &CategoryItemsProxy::forgetNameKeys);
            connect(source, &QAbstractItemModel::rowsAboutToBeInserted, this,
                    &CategoryItemsProxy::forgetNameKeys);
            connect(source, &QAbstractItemModel::rowsAboutToBeRemoved, this,
                    &CategoryItemsProxy::forgetNameKeys);
            connect(source, &QAbstractItemModel::layoutAboutToBeChanged, this,
                    &CategoryItemsProxy::forgetNameKeys);
        }
    });
    applySort();
}

const CategoryItemsModel* CategoryItemsProxy::items() const {
    return qobject_cast<const CategoryItemsModel*>(sourceModel());
}

void CategoryItemsProxy::setFilterText(const QString& text) {
    if (text == filterText_)
        return;
    filterText_ = text;
    invalidateFilter();
    emit filterTextChanged();
    emit countChanged();
}

void CategoryItemsProxy::setSortKey(SortKey key) {
    if (key == sortKey_)
        return;
    sortKey_ = key;
    applySort();
    emit sortChanged();
}

void CategoryItemsProxy::setAscending(bool ascending) {
    if (ascending == ascending_)
        return;
    ascending_ = ascending;
    applySort();
    emit sortChanged();
}

void CategoryItemsProxy::sortBy(SortKey key) {
    if (key == sortKey_) {
        setAscending(!ascending_);
        return;
    }
    sortKey_ = key;
    ascending_ = key == SortKey::name;
    applySort();
    emit sortChanged();
}

QString CategoryItemsProxy::keyAt(int row) const {
    const QModelIndex at = index(row, 0);
    return at.isValid() ? at.data(CategoryItemsModel::KeyRole).toString() : QString();
}

void CategoryItemsProxy::applySort() {
    const Qt::SortOrder order = ascending_ ? Qt::AscendingOrder : Qt::DescendingOrder;
    // sort() ignores a request for the column and order already in force, which is
    // all a change of key looks like to it; re-sorting in place is then up to us.
    if (sortColumn() == 0 && sortOrder() == order)
        invalidate();
    else
        sort(0, order);
}

bool CategoryItemsProxy::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const {
    if (filterText_.isEmpty())
        return true;
    const QModelIndex at = sourceModel()->index(sourceRow, 0, sourceParent);
    return at.data(CategoryItemsModel::NameRole).toString().contains(filterText_, Qt::CaseInsensitive) ||
           at.data(CategoryItemsModel::LocationRole).toString().contains(filterText_, Qt::CaseInsensitive);
}

bool CategoryItemsProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    // Sorting compares rows n log n times: read the items directly rather than
    // through the item roles.
    const CategoryItemsModel* source = items();
    const ScanItem* a = source ? source->itemAt(left.row()) : nullptr;
    const ScanItem* b = source ? source->itemAt(right.row()) : nullptr;
    if (!a || !b)
        return false;
    switch (sortKey_) {
    case SortKey::name: {
        if (nameKeys_.empty()) {
            const int rows = source->rowCount();
            nameKeys_.reserve(static_cast<size_t>(rows));
            for (int row = 0; row < rows; ++row) {
                const ScanItem* item = source->itemAt(row);
                nameKeys_.push_back(collator_.sortKey(item ? ItemKey::displayText(item->name) : QString()));
            }
        }
        return nameKeys_[static_cast<size_t>(left.row())].compare(
                   nameKeys_[static_cast<size_t>(right.row())]) < 0;
    }
    case SortKey::size:
        return a->sortSize() < b->sortSize();
    case SortKey::date:
        return a->sortDate() < b->sortDate();
    }
    return false;
}
