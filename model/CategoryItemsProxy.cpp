#include "model/CategoryItemsProxy.h"

#include "model/CategoryItemsModel.h"

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
    applySort();
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
    switch (sortKey_) {
    case SortKey::name:
        return collator_.compare(left.data(CategoryItemsModel::NameRole).toString(),
                                 right.data(CategoryItemsModel::NameRole).toString()) < 0;
    case SortKey::size:
        return left.data(CategoryItemsModel::SortSizeRole).toLongLong() <
               right.data(CategoryItemsModel::SortSizeRole).toLongLong();
    case SortKey::date:
        return left.data(CategoryItemsModel::SortDateRole).toLongLong() <
               right.data(CategoryItemsModel::SortDateRole).toLongLong();
    }
    return false;
}
