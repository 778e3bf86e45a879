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
        forgetRows();
        if (QAbstractItemModel* source = sourceModel()) {
            connect(source, &QAbstractItemModel::modelAboutToBeReset, this, &CategoryItemsProxy::forgetRows);
            connect(source, &QAbstractItemModel::rowsAboutToBeInserted, this,
                    &CategoryItemsProxy::forgetRows);
            connect(source, &QAbstractItemModel::rowsAboutToBeRemoved, this, &CategoryItemsProxy::forgetRows);
            connect(source, &QAbstractItemModel::layoutAboutToBeChanged, this,
                    &CategoryItemsProxy::forgetRows);
        }
    });
    applySort();
}

const CategoryItemsModel* CategoryItemsProxy::items() const {
    return qobject_cast<const CategoryItemsModel*>(sourceModel());
}

const std::vector<CategoryItemsProxy::RowTexts>& CategoryItemsProxy::texts() const {
    const CategoryItemsModel* source = items();
    if (!texts_.empty() || !source)
        return texts_;
    const int rows = source->rowCount();
    texts_.reserve(static_cast<size_t>(rows));
    // Items of a category mostly share their folder: its text is made once and shared.
    std::string_view lastFolder;
    QString lastLocation;
    bool haveLast = false;
    for (int row = 0; row < rows; ++row) {
        const ScanItem* item = source->itemAt(row);
        if (!item) {
            texts_.push_back({});
            continue;
        }
        RowTexts texts{ItemKey::displayText(item->name), {}};
        if (item->method.isCommand() || !item->url) {
            texts.location = ItemKey::displayText(item->location());
        } else {
            const std::string_view url = *item->url;
            const std::string_view folder = url.substr(0, std::min(url.size(), url.rfind('/')));
            if (!haveLast || folder != lastFolder) {
                lastFolder = folder;
                lastLocation = ItemKey::displayText(item->location());
                haveLast = true;
            }
            texts.location = lastLocation;
        }
        texts_.push_back(std::move(texts));
    }
    return texts_;
}

void CategoryItemsProxy::setFilterText(const QString& text) {
    if (text == filterText_)
        return;
    filterText_ = text;
    invalidate();
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
    if (sourceParent.isValid() || sourceRow < 0 || static_cast<size_t>(sourceRow) >= texts().size())
        return false;
    const RowTexts& row = texts()[static_cast<size_t>(sourceRow)];
    return row.name.contains(filterText_, Qt::CaseInsensitive) ||
           row.location.contains(filterText_, Qt::CaseInsensitive);
}

bool CategoryItemsProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    // A sort compares rows n log n times: each row's key is made once per list and
    // compared directly, never read through the item roles.
    const auto a = static_cast<size_t>(left.row()), b = static_cast<size_t>(right.row());
    if (sortKey_ == SortKey::name) {
        if (nameKeys_.empty()) {
            nameKeys_.reserve(texts().size());
            for (const RowTexts& row : texts())
                nameKeys_.push_back(collator_.sortKey(row.name));
        }
        return a < nameKeys_.size() && b < nameKeys_.size() && nameKeys_[a].compare(nameKeys_[b]) < 0;
    }
    if (numberKeys_.empty() || numberKeysOf_ != sortKey_) {
        numberKeys_.clear();
        numberKeysOf_ = sortKey_;
        const CategoryItemsModel* source = items();
        const int rows = source ? source->rowCount() : 0;
        numberKeys_.reserve(static_cast<size_t>(rows));
        for (int row = 0; row < rows; ++row) {
            const ScanItem* item = source->itemAt(row);
            numberKeys_.push_back(!item                       ? 0
                                  : sortKey_ == SortKey::size ? item->sortSize()
                                                              : item->sortDate().time_since_epoch().count());
        }
    }
    return a < numberKeys_.size() && b < numberKeys_.size() && numberKeys_[a] < numberKeys_[b];
}
