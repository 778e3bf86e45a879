#include "CategoryDetailFixture.h"

#include "UiHarness.h"

#include <QTest>
#include <QtQuickTest/quicktest.h>

#include <algorithm>
#include <ctime>
#include <sys/stat.h>
#include <utime.h>

QQuickItem* CategoryDetail::show(const QString& categoryID) {
    navigate(QStringLiteral("category"), categoryID);
    QQuickItem* screen = nullptr;
    const bool shown = UiHarness::waitFor([&] {
        screen = window()->findChild<QQuickItem*>(QStringLiteral("categoryDetailView"));
        return screen && screen->property("categoryId").toString() == categoryID;
    });
    EXPECT_TRUE(shown) << "the screen of " << categoryID.toStdString() << " did not show";
    EXPECT_TRUE(shown && settled(screen));
    return shown ? screen : nullptr;
}

QQuickItem* CategoryDetail::view() {
    return item(QStringLiteral("categoryDetailView"));
}

std::vector<QQuickItem*> CategoryDetail::rows() {
    std::vector<QQuickItem*> shown;
    QQuickItem* list = item(QStringLiteral("itemList"));
    if (!list)
        return shown;
    // Let the list lay out what the model just changed.
    EXPECT_TRUE(QQuickTest::qWaitForPolish(window()));
    auto* content = list->property("contentItem").value<QQuickItem*>();
    for (QQuickItem* child : content->childItems())
        if (child->objectName() == QLatin1String("itemRow") && child->isVisible())
            shown.push_back(child);
    std::sort(shown.begin(), shown.end(), [](QQuickItem* a, QQuickItem* b) { return a->y() < b->y(); });
    return shown;
}

QStringList CategoryDetail::shownNames() {
    QStringList names;
    for (QQuickItem* each : rows())
        names << each->property("name").toString();
    return names;
}

QQuickItem* CategoryDetail::row(const QString& name) {
    for (QQuickItem* each : rows())
        if (each->property("name").toString() == name)
            return each;
    ADD_FAILURE() << "no row named " << name.toStdString();
    return nullptr;
}

QQuickItem* CategoryDetail::part(QQuickItem* parent, const QString& name) {
    auto* found = parent ? parent->findChild<QQuickItem*>(name) : nullptr;
    EXPECT_NE(found, nullptr) << "no " << name.toStdString();
    return found;
}

void CategoryDetail::doubleClick(QQuickItem* target) {
    ASSERT_NE(target, nullptr);
    ASSERT_TRUE(settled(target));
    const QPoint centre = target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint();
    QTest::mouseClick(window(), Qt::LeftButton, Qt::NoModifier, centre);
    QTest::mouseDClick(window(), Qt::LeftButton, Qt::NoModifier, centre);
}

bool CategoryDetail::openMenuOn(QQuickItem* target) {
    QObject* menu = find(QStringLiteral("itemContextMenu"));
    if (!menu || !target)
        return false;
    if (menu->property("opened").toBool()) {
        QMetaObject::invokeMethod(menu, "close");
        UiHarness::waitFor([&] { return !menu->property("visible").toBool(); });
    }
    click(target, Qt::RightButton);
    return UiHarness::waitFor([&] { return menu->property("opened").toBool(); });
}

bool CategoryDetail::menuEntryShown(const QString& name) {
    auto* entry = item(name);
    return entry && entry->isVisible() && entry->height() > 0;
}

void CategoryDetail::trigger(const QString& name) {
    QObject* entry = find(name);
    ASSERT_NE(entry, nullptr);
    ASSERT_TRUE(entry->property("enabled").toBool()) << name.toStdString();
    QMetaObject::invokeMethod(entry, "triggered");
}

void CategoryDetail::age(const std::string& relative, int days) {
    const time_t then = std::time(nullptr) - time_t(days) * 24 * 3600;
    const utimbuf times{then, then};
    ASSERT_EQ(::utime(home().path(relative).c_str(), &times), 0) << relative;
}
