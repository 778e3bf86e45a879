#include "WindowFixture.h"

#include "UiHarness.h"
#include "platform/Paths.h"
#include "ui/UiServices.h"
#include "ui/WindowSearch.h"

#include <QCoreApplication>
#include <QTest>
#include <QtQuickTest/quicktest.h>

#include <algorithm>
#include <ctime>

void WindowTest::SetUp() {
    UiHarness::takeMessages();

    // Something in several groups, and categories that stay empty.
    home_.makeFileOfSize("Library/Caches/com.example.editor/blob.bin", 300'000);
    home_.makeFileOfSize("Library/Caches/org.example.player/data/cache.db", 120'000);
    home_.makeFileOfSize("Library/Logs/example.log", 40'000);
    home_.makeFileOfSize(".Trash/old-report.pdf", 200'000);
    home_.makeFileOfSize("Library/Saved Application State/com.example.editor.savedState/data.data", 8'000);
    home_.makeFileOfSize(".npm/_cacache/index-v5/aa", 50'000);
    setModificationTime(home_.makeFileOfSize("Downloads/installer.zip", 90'000),
                        std::time(nullptr) - 200 * 86400);

    model_ = std::make_unique<AppModel>();
    engine_ = std::make_unique<QQmlApplicationEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/"));
    UiServices::install(*engine_);
    engine_->load(QUrl(QStringLiteral("qrc:/Veltro/Main.qml")));
    const auto roots = engine_->rootObjects();
    window_ = roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.constFirst());
    ASSERT_NE(window_, nullptr) << "Main.qml did not load";
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window_));
}

void WindowTest::TearDown() {
    if (window_)
        window_->close();
    engine_.reset();
    QCoreApplication::processEvents();
    // A scan still winding down is stopped and joined by the model's destructor.
    model_.reset();
    const QStringList messages = UiHarness::takeMessages();
    EXPECT_TRUE(messages.isEmpty()) << "Warnings while the test ran:\n" << messages.join('\n').toStdString();
}

QObject* WindowTest::find(const QString& name) {
    QObject* found = WindowSearch::firstNamed(window_, name);
    EXPECT_NE(found, nullptr) << "no object named " << name.toStdString();
    return found;
}

QList<QObject*> WindowTest::findAll(const QString& name) {
    return WindowSearch::allNamed(window_, name);
}

QVariant WindowTest::read(const QString& name, const char* property) {
    QObject* object = find(name);
    return object ? object->property(property) : QVariant();
}

bool WindowTest::settled(QQuickItem* target) {
    // A layout places what just became visible at its next polish, and a moving item is
    // only where it lands once its animation ends: compare samples a frame apart.
    QRectF last;
    int steady = 0;
    return target && UiHarness::waitFor(
                         [&] {
                             window_->update();
                             const QRectF place = target->mapRectToScene(target->boundingRect());
                             const bool same = place == last && !QQuickTest::qIsPolishScheduled(window_);
                             last = place;
                             return (steady = same ? steady + 1 : 0) >= 3;
                         },
                         5000);
}

void WindowTest::click(QQuickItem* target, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
    ASSERT_NE(target, nullptr);
    ASSERT_TRUE(settled(target)) << target->objectName().toStdString() << " keeps moving";
    clickNow(target, button, modifiers);
}

void WindowTest::clickNow(QQuickItem* target, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
    ASSERT_NE(target, nullptr);
    const QPointF centre = target->mapToScene(QPointF(target->width() / 2, target->height() / 2));
    QTest::mouseClick(window_, button, modifiers, centre.toPoint());
}

void WindowTest::clickInScroller(const QString& scrollerName, QQuickItem* target) {
    ASSERT_NE(target, nullptr);
    QQuickItem* scroller = item(scrollerName);
    ASSERT_NE(scroller, nullptr);
    auto* content = scroller->property("contentItem").value<QQuickItem*>();
    ASSERT_NE(content, nullptr);
    const double top = target->mapToItem(content, QPointF(0, 0)).y();
    const double limit = std::max(0.0, scroller->property("contentHeight").toDouble() - scroller->height());
    scroller->setProperty("contentY", std::clamp(top - scroller->height() / 3, 0.0, limit));
    ASSERT_TRUE(settled(target));
    const QPointF centre = target->mapToItem(scroller, QPointF(target->width() / 2, target->height() / 2));
    ASSERT_TRUE(centre.y() > 0 && centre.y() < scroller->height())
        << "cannot scroll " << target->objectName().toStdString() << " into view";
    click(target);
}

void WindowTest::key(int keyCode, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window_, Qt::Key(keyCode), modifiers);
}

bool WindowTest::waitForPhase(AppModel::Phase phase, int timeoutMs) {
    return UiHarness::waitFor([&] { return model_->phase() == phase; }, timeoutMs);
}

bool WindowTest::scanToEnd() {
    model_->scan();
    return UiHarness::waitFor([&] { return model_->phase() != AppModel::Phase::scanning; }, 30000);
}

QString WindowTest::someItemKey(const QString& categoryID) {
    for (const QVariant& entry : model_->largestItems()) {
        const QVariantMap item = entry.toMap();
        if (item.value("categoryId").toString() == categoryID)
            return item.value("key").toString();
    }
    return {};
}

void WindowTest::navigate(const QString& kind, const QString& categoryID) {
    QObject* content = find(QStringLiteral("contentView"));
    ASSERT_NE(content, nullptr);
    QMetaObject::invokeMethod(content, "navigate", Q_ARG(QVariant, kind), Q_ARG(QVariant, categoryID));
}

std::string WindowTest::idOf(const std::string& relative) {
    return Paths::canonicalPath(home_.path(relative));
}

void WindowTest::tick(const std::string& id) {
    ASSERT_NE(model_->findItem(id), nullptr) << "not found by the scan: " << id;
    model_->setSelected(id, true);
}
