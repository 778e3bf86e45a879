#pragma once
// The category table's view of its items: filtered by a text over name and
// location (case-insensitive), sorted by name (locale collation, numbers by value),
// size or date. Changing either re-filters or re-sorts in place; it never resets.
// A new filter is one layout change: removing the rows it hides range by range
// would cost the square of the rows when they lie scattered through a long list.

#include <QCollator>
#include <QSortFilterProxyModel>
#include <QtQml/qqmlregistration.h>

#include <vector>

class CategoryItemsModel;

class CategoryItemsProxy : public QSortFilterProxyModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Owned by AppModel")
    Q_PROPERTY(QString filterText READ filterText WRITE setFilterText NOTIFY filterTextChanged)
    Q_PROPERTY(SortKey sortKey READ sortKey WRITE setSortKey NOTIFY sortChanged)
    Q_PROPERTY(bool ascending READ ascending WRITE setAscending NOTIFY sortChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum class SortKey { name, size, date };
    Q_ENUM(SortKey)

    explicit CategoryItemsProxy(QObject* parent = nullptr);

    QString filterText() const { return filterText_; }
    void setFilterText(const QString& text);
    SortKey sortKey() const { return sortKey_; }
    void setSortKey(SortKey key);
    bool ascending() const { return ascending_; }
    void setAscending(bool ascending);
    int count() const { return rowCount(); }

    // Clicking a column: the same column again reverses the order; another column
    // sorts by it (names ascending, sizes and dates largest/newest first).
    Q_INVOKABLE void sortBy(SortKey key);

    // The item key of a row of this view, or "" when out of range.
    Q_INVOKABLE QString keyAt(int row) const;

signals:
    void filterTextChanged();
    void sortChanged();
    void countChanged();

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    void applySort();
    void forgetRows() {
        nameKeys_.clear();
        numberKeys_.clear();
        texts_.clear();
    }
    const CategoryItemsModel* items() const;
    // The texts the filter and the name order look at, made once per list.
    struct RowTexts {
        QString name;
        QString location;
    };
    const std::vector<RowTexts>& texts() const;

    QString filterText_;
    SortKey sortKey_ = SortKey::size;
    bool ascending_ = false;
    QCollator collator_;
    // Each row's collation key, made once per list: comparing keys is a byte
    // comparison, where collating two names anew at every comparison of a sort is not.
    mutable std::vector<QCollatorSortKey> nameKeys_;
    mutable std::vector<RowTexts> texts_;
    mutable std::vector<int64_t> numberKeys_; // sizes or dates (nanoseconds), per numberKeysOf_
    mutable SortKey numberKeysOf_ = SortKey::size;
};
