#include "OverviewSupport.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QQuickItem* findShown(QQuickItem* parent, const QString& name) {
    for (QQuickItem* child : parent->childItems()) {
        if (child->objectName() == name)
            return child;
        if (QQuickItem* found = findShown(child, name))
            return found;
    }
    return nullptr;
}

} // namespace

QQuickItem* OverviewTest::shownItem(const QString& name, bool required) {
    QQuickItem* found = window() ? findShown(window()->contentItem(), name) : nullptr;
    if (required) {
        EXPECT_NE(found, nullptr) << "nothing shown named " << name.toStdString();
    }
    return found;
}

void OverviewTest::clickVisible(QQuickItem* target) {
    ASSERT_NE(target, nullptr);
    QQuickItem* page = item(QStringLiteral("overviewPage"));
    ASSERT_NE(page, nullptr);
    auto* content = page->property("contentItem").value<QQuickItem*>();
    ASSERT_NE(content, nullptr);
    const double top = target->mapToItem(content, QPointF(0, 0)).y();
    const double maxY = std::max(0.0, page->property("contentHeight").toDouble() - page->height());
    const double wanted = std::clamp(top - page->height() / 3, 0.0, maxY);
    page->setProperty("contentY", wanted);
    QCoreApplication::processEvents();
    const QPointF centre = target->mapToItem(page, QPointF(target->width() / 2, target->height() / 2));
    ASSERT_TRUE(centre.y() > 0 && centre.y() < page->height())
        << "cannot scroll " << target->objectName().toStdString() << " into view";
    click(target);
}

std::vector<double> OverviewTest::segmentWidths() {
    std::vector<double> widths;
    for (const QVariant& width : read(QStringLiteral("capacity"), "segmentWidths").toList())
        widths.push_back(width.toDouble());
    return widths;
}

std::vector<QQuickItem*> OverviewTest::rowsOf(const QString& list, const QString& namePrefix) {
    std::vector<QQuickItem*> rows;
    QQuickItem* view = item(list);
    if (!view)
        return rows;
    auto* content = view->property("contentItem").value<QQuickItem*>();
    if (!content)
        return rows;
    for (QQuickItem* child : content->childItems())
        if (child->objectName().startsWith(namePrefix) && child->isVisible() && child->opacity() > 0.99)
            rows.push_back(child);
    std::sort(rows.begin(), rows.end(), [](QQuickItem* a, QQuickItem* b) { return a->y() < b->y(); });
    return rows;
}
