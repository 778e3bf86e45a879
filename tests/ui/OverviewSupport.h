#pragma once
// The overview's tests run in the real window (WindowTest); these helpers reach the
// screen's parts, which may sit below the fold of its scrolling page.

#include "WindowFixture.h"

#include "catalogue/CategoryGroup.h"

#include <QStringList>

#include <vector>

class OverviewTest : public WindowTest {
protected:
    // The item named `name` in the window's visual tree, or null (a test failure when
    // `required`). Rows and chips made by a Repeater or a list view are found here,
    // not through the object tree.
    QQuickItem* shownItem(const QString& name, bool required = true);
    // Scrolls the overview page so that `target` is inside the window, then clicks it.
    void clickVisible(QQuickItem* target) { clickInScroller(QStringLiteral("overviewPage"), target); }
    // The capacity bar's four segment widths, left to right.
    std::vector<double> segmentWidths();
    // The delegates named `name` inside `list`, top to bottom, leaving out rows on their
    // way out.
    std::vector<QQuickItem*> rowsOf(const QString& list, const QString& namePrefix);
};
