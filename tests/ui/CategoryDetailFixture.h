#pragma once
// The category screen inside the real window: navigation to a category, the table's
// rows in the order they are shown, pointer events with modifiers, and tools on the
// children's search path for command items.

#include "WindowFixture.h"

#include <QQuickItem>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

class CategoryDetail : public WindowTest {
protected:
    // Shows the category's screen, laid out, and returns it, or null with a test failure.
    QQuickItem* show(const QString& categoryID);
    QQuickItem* view();
    QString content() { return view() ? view()->property("content").toString() : QString(); }

    // The table's rows as shown, top to bottom.
    std::vector<QQuickItem*> rows();
    QStringList shownNames();
    // The shown row whose item is named `name`, or null with a test failure.
    QQuickItem* row(const QString& name);
    // The named child of `parent`, or null with a test failure.
    QQuickItem* part(QQuickItem* parent, const QString& name);

    void doubleClick(QQuickItem* target);
    // Right-clicks `target` and waits for the table's context menu.
    bool openMenuOn(QQuickItem* target);
    bool menuEntryShown(const QString& name);
    void trigger(const QString& name);

    // Sets the modification time of the home-relative `path` `days` in the past.
    void age(const std::string& relative, int days);
};
