#include "ui/WindowSearch.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QSet>

namespace {

void collect(QObject* object, const QString& name, QSet<QObject*>& seen, QList<QObject*>& found) {
    if (!object || seen.contains(object))
        return;
    seen.insert(object);
    if (object->objectName() == name)
        found << object;
    for (QObject* child : object->children())
        collect(child, name, seen, found);
    if (auto* item = qobject_cast<QQuickItem*>(object))
        for (QQuickItem* child : item->childItems())
            collect(child, name, seen, found);
}

} // namespace

namespace WindowSearch {

QList<QObject*> allNamed(QQuickWindow* window, const QString& name) {
    QSet<QObject*> seen;
    QList<QObject*> found;
    if (window) {
        collect(window, name, seen, found);
        collect(window->contentItem(), name, seen, found);
    }
    return found;
}

QObject* firstNamed(QQuickWindow* window, const QString& name) {
    const QList<QObject*> found = allNamed(window, name);
    return found.isEmpty() ? nullptr : found.first();
}

} // namespace WindowSearch
