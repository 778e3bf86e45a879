#pragma once
// Finding the window's objects by objectName. Delegates made by a Repeater have only
// a visual parent and popups only a QObject one, so the search walks both trees.

#include <QList>
#include <QString>

class QObject;
class QQuickWindow;

namespace WindowSearch {

// Every object named `name`, in depth-first order, each once.
QList<QObject*> allNamed(QQuickWindow* window, const QString& name);

// The first of allNamed, or nullptr.
QObject* firstNamed(QQuickWindow* window, const QString& name);

} // namespace WindowSearch
