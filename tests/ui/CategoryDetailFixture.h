#pragma once
// The category screen inside the real window: navigation to a category, the table's
// rows in the order they are shown, and its context menu.

#include "WindowFixture.h"

#include <QQuickItem>
#include <QString>
#include <QStringList>

#include <vector>

class CategoryDetail : public WindowTest {
protected:
    // Shows the category's screen, laid out, and returns it, or null with a test failure.
    QQuickItem* show(const QString& categoryID);
    QString content() { return read(QStringLiteral("categoryDetailView"), "content").toString(); }

    // The table's rows as shown, top to bottom, and their item names.
    std::vector<QQuickItem*> rows() { return rowsOf(QStringLiteral("itemList"), QStringLiteral("itemRow")); }
    QStringList shownNames() { return propertyOf(rows(), "name"); }
    // The shown row whose item is named `name`, or null with a test failure.
    QQuickItem* row(const QString& name);

    // Right-clicks `target` and waits for the table's context menu.
    bool openMenuOn(QQuickItem* target);
    bool menuEntryShown(const QString& name);
    void trigger(const QString& name);
};
