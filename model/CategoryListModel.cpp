#include "model/CategoryListModel.h"

#include "catalogue/CleanupRules.h"
#include "model/AppModel.h"

#include <QColor>

namespace {

const std::vector<CleanCategory>& rows() { return CleanupRules::categories(); }

QColor colorOf(const Rgb& rgb) { return QColor::fromRgbF(float(rgb.red), float(rgb.green), float(rgb.blue)); }

} // namespace

CategoryListModel::CategoryListModel(AppModel* model, QObject* parent) : QAbstractListModel(parent), model_(model) {
    connect(model_, &AppModel::itemsByCategoryChanged, this, &CategoryListModel::refreshLiveRoles);
    connect(model_, &AppModel::selectionChanged, this, &CategoryListModel::refreshLiveRoles);
    connect(model_, &AppModel::categoryStateChanged, this, &CategoryListModel::refreshLiveRoles);
}

int CategoryListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows().size());
}

QVariant CategoryListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const CleanCategory& category = rows()[static_cast<size_t>(index.row())];
    const QString id = QString::fromStdString(category.id);
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return QString::fromStdString(category.title);
    case IdRole:
        return id;
    case GroupRole:
        return QString::fromUtf8(CategoryGroups::rawValue(category.group));
    case GroupTitleRole:
        return QString::fromStdString(CategoryGroups::title(category.group));
    case DetailRole:
        return QString::fromStdString(category.detail);
    case SymbolRole:
        return QString::fromStdString(category.symbol);
    case TintRole:
        return colorOf(CategoryGroups::tint(category.group));
    case RiskRole:
        return QString::fromUtf8(Risks::name(category.risk));
    case RiskLabelRole:
        return QString::fromStdString(Risks::label(category.risk));
    case SelectedByDefaultRole:
        return category.selectedByDefault;
    case ScanStateRole:
        return static_cast<int>(model_->stateOf(id));
    case ItemCountRole:
        return model_->itemCountOf(id);
    case TotalSizeRole:
        return model_->totalSize(id);
    case SelectedCountRole:
        return model_->selectedCount(id);
    case SelectedSizeRole:
        return model_->selectedSize(id);
    default:
        return {};
    }
}

QHash<int, QByteArray> CategoryListModel::roleNames() const {
    return {
        {IdRole, "categoryId"},
        {GroupRole, "group"},
        {GroupTitleRole, "groupTitle"},
        {TitleRole, "title"},
        {DetailRole, "detail"},
        {SymbolRole, "symbol"},
        {TintRole, "tint"},
        {RiskRole, "risk"},
        {RiskLabelRole, "riskLabel"},
        {SelectedByDefaultRole, "selectedByDefault"},
        {ScanStateRole, "scanState"},
        {ItemCountRole, "itemCount"},
        {TotalSizeRole, "totalSize"},
        {SelectedCountRole, "selectedCount"},
        {SelectedSizeRole, "selectedSize"},
    };
}

int CategoryListModel::rowOf(const QString& categoryID) const {
    const std::string wanted = categoryID.toStdString();
    for (size_t i = 0; i < rows().size(); ++i)
        if (rows()[i].id == wanted)
            return static_cast<int>(i);
    return -1;
}

void CategoryListModel::refreshLiveRoles() {
    if (rows().empty())
        return;
    emit dataChanged(index(0), index(rowCount() - 1),
                     {ScanStateRole, ItemCountRole, TotalSizeRole, SelectedCountRole, SelectedSizeRole});
}
