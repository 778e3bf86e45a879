#include "CategoryDetailFixture.h"

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

QQuickItem* CategoryDetail::row(const QString& name) {
    for (QQuickItem* each : rows())
        if (each->property("name").toString() == name)
            return each;
    ADD_FAILURE() << "no row named " << name.toStdString();
    return nullptr;
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
