#include "WindowFixture.h"

#include "platform/Paths.h"
#include "platform/ShellQuote.h"
#include "ui/UiServices.h"
#include "ui/WindowSearch.h"

#include <QCoreApplication>
#include <QTest>
#include <QVariantAnimation>
#include <QtQuickTest/quicktest.h>

#include <algorithm>
#include <ctime>
#include <unistd.h>
#include <utility>

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
    releaseScans();
    model_.reset();
    const QStringList messages = UiHarness::takeMessages();
    EXPECT_TRUE(messages.isEmpty()) << "Warnings while the test ran:\n" << messages.join('\n').toStdString();
}

QObject* WindowTest::find(const QString& name) {
    QObject* found = WindowSearch::firstNamed(window_, name);
    EXPECT_NE(found, nullptr) << "no object named " << name.toStdString();
    return found;
}

QVariant WindowTest::read(const QString& name, const char* property) {
    QObject* object = find(name);
    return object ? object->property(property) : QVariant();
}

namespace {

// The ticks of the one animation timer that moves everything animated, counted by an
// animation that runs for as long as the tests do (one that starts and stops with each
// wait would make the timer stop twice).
int animationTicks() {
    static int ticks = 0;
    [[maybe_unused]] static QVariantAnimation* const probe = [] {
        auto* animation = new QVariantAnimation(QCoreApplication::instance());
        animation->setStartValue(0.0);
        animation->setEndValue(1.0);
        animation->setDuration(1000);
        animation->setLoopCount(-1);
        QObject::connect(animation, &QVariantAnimation::valueChanged, animation, [] { ++ticks; });
        animation->start();
        return animation;
    }();
    return ticks;
}

} // namespace

bool WindowTest::steady(const std::function<bool()>& unchanged) {
    // Comparing at every tick of the animation timer, not every few milliseconds, a busy
    // machine that delays the ticks cannot make a moving item look still; a layout
    // places what changed at its next polish.
    int seen = animationTicks(), still = 0;
    return UiHarness::waitFor([&] {
        window_->update();
        if (animationTicks() == seen || QQuickTest::qIsPolishScheduled(window_))
            return false;
        seen = animationTicks();
        still = unchanged() ? still + 1 : 0;
        return still >= 3;
    });
}

bool WindowTest::settled(QQuickItem* target) {
    QRectF last;
    return target && steady([&] {
               const QRectF place = target->mapRectToScene(target->boundingRect());
               return std::exchange(last, place) == place;
           });
}

void WindowTest::click(QQuickItem* target, Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
    ASSERT_NE(target, nullptr);
    ASSERT_TRUE(settled(target)) << target->objectName().toStdString() << " keeps moving";
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

void WindowTest::holdScans() {
    ::unlink(home_.path(".scan-may-end").c_str());
    home_.installTool("snapper", "i=0\nwhile [ ! -e " + shellQuote(home_.path(".scan-may-end")) +
                                     " ] && [ $i -lt 400 ]; do sleep 0.05; i=$((i + 1)); done\nexit 1");
}

void WindowTest::releaseScans() {
    home_.makeFile(".scan-may-end");
}

bool WindowTest::startsScan(const std::function<void()>& act) {
    bool started = false;
    const QMetaObject::Connection watching =
        QObject::connect(model_.get(), &AppModel::phaseChanged, window_,
                         [&] { started |= model_->phase() == AppModel::Phase::scanning; });
    act();
    QObject::disconnect(watching);
    return started;
}

bool WindowTest::scanToEnd() {
    model_->scan();
    return UiHarness::waitFor([&] { return model_->phase() != AppModel::Phase::scanning; }, 30000);
}

std::vector<QQuickItem*> WindowTest::rowsOf(const QString& list, const QString& prefix) {
    std::vector<QQuickItem*> rows;
    QQuickItem* view = item(list);
    auto* content = view ? view->property("contentItem").value<QQuickItem*>() : nullptr;
    if (!content)
        return rows;
    EXPECT_TRUE(QQuickTest::qWaitForPolish(window_));
    for (QQuickItem* child : content->childItems())
        if (child->objectName().startsWith(prefix) && child->isVisible() && child->opacity() > 0.99)
            rows.push_back(child);
    std::sort(rows.begin(), rows.end(), [](QQuickItem* a, QQuickItem* b) { return a->y() < b->y(); });
    return rows;
}

QQuickItem* WindowTest::part(QQuickItem* parent, const QString& name) {
    auto* found = parent ? parent->findChild<QQuickItem*>(name) : nullptr;
    EXPECT_NE(found, nullptr) << "no " << name.toStdString();
    return found;
}

QStringList WindowTest::propertyOf(const std::vector<QQuickItem*>& items, const char* property) {
    QStringList values;
    for (QQuickItem* each : items)
        values << each->property(property).toString();
    return values;
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
