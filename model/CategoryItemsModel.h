#pragma once
// The items of one category, in the model's order (largest first), with their check
// state: the source of the category table. It reads the model's items in place
// through positions taken when the list last changed.

#include "model/ScanResults.h"

#include <QAbstractListModel>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <vector>

class AppModel;

class CategoryItemsModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Owned by AppModel")
    Q_PROPERTY(QString categoryId READ categoryId WRITE setCategoryId NOTIFY categoryIdChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        KeyRole = Qt::UserRole + 1,
        NameRole,
        PathRole,
        LocationRole,
        SizeRole,     // bytes, or -1 when unknown
        ModifiedRole, // QDateTime, invalid when unknown
        HasURLRole,
        MethodRole, // "trash", "permanent", "adminTrash", "command"
        AdminRole,
        NoteRole,
        CheckedRole,
        SortSizeRole,
        SortDateRole, // ms since the epoch; the minimum value when unknown
    };
    Q_ENUM(Role)

    CategoryItemsModel(AppModel* model, QObject* parent = nullptr);

    QString categoryId() const { return categoryId_; }
    void setCategoryId(const QString& id);
    int count() const { return static_cast<int>(positions_.size()); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const ScanItem* itemAt(int row) const;

signals:
    void categoryIdChanged();
    void countChanged();

private:
    void reload();
    void refreshChecks();

    AppModel* model_;
    QString categoryId_;
    ItemPositions positions_;
    uint64_t itemsVersion_ = 0;
};
