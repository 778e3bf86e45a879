#pragma once
// The catalogue's categories, in display order, with their live scan state and
// sizes: the sidebar's and the ranking's data.

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

class AppModel;

class CategoryListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Owned by AppModel")

public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        GroupRole,
        GroupTitleRole,
        TitleRole,
        DetailRole,
        SymbolRole,
        TintRole,
        RiskRole,
        RiskLabelRole,
        SelectedByDefaultRole,
        ScanStateRole,
        ItemCountRole,
        TotalSizeRole,
        SelectedCountRole,
        SelectedSizeRole,
    };
    Q_ENUM(Role)

    CategoryListModel(AppModel* model, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE int rowOf(const QString& categoryID) const;

private:
    void refreshLiveRoles();

    AppModel* model_;
};
