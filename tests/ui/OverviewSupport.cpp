#include "OverviewSupport.h"

#include <QCoreApplication>
#include <QtQuickTest/quicktest.h>

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
    // Rows are ordered by where the list put them: wait for it to place what changed.
    EXPECT_TRUE(QQuickTest::qWaitForPolish(window()));
    for (QQuickItem* child : content->childItems())
        if (child->objectName().startsWith(namePrefix) && child->isVisible() && child->opacity() > 0.99)
            rows.push_back(child);
    std::sort(rows.begin(), rows.end(), [](QQuickItem* a, QQuickItem* b) { return a->y() < b->y(); });
    return rows;
}
