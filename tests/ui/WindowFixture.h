#pragma once
// The real window over the real model: a fake home with some junk, one AppModel, and
// Main.qml loaded offscreen exactly as the application loads it. Fails the test on any
// warning recorded while it ran.

#include "UiHarness.h"
#include "model/AppModel.h"
#include "support/FakeHome.h"

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

class WindowTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    AppModel& model() { return *model_; }
    QQuickWindow* window() const { return window_; }
    FakeHome& home() { return home_; }

    // The object named `name` anywhere under the window (menus included), or null with
    // a test failure.
    QObject* find(const QString& name);
    QQuickItem* item(const QString& name) { return qobject_cast<QQuickItem*>(find(name)); }
    QVariant read(const QString& name, const char* property);
    QString text(const QString& name) { return read(name, "text").toString(); }
    bool visible(const QString& name) { return read(name, "visible").toBool(); }

    // Waits until `unchanged` answers true at three animation ticks in a row with no
    // layout pending; `unchanged` compares what it looks at with its previous call.
    // False when that takes 10 s.
    bool steady(const std::function<bool()>& unchanged);
    // Waits until the window has laid out what changed and `item` has stopped moving.
    bool settled(QQuickItem* item);
    // Real pointer events at the centre of `item`, once it has settled.
    void click(QQuickItem* item, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    // Scrolls the flickable named `scroller` until `target` lies well inside it, then
    // clicks it; a test failure when it cannot be brought into view.
    void clickInScroller(const QString& scroller, QQuickItem* target);
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    // From now on a scan runs until releaseScans(): the snapshot count it asks the
    // system for waits (20 s at most) for the test to let it end.
    void holdScans();
    void releaseScans();
    // Whether `act` started a scan. Input from QTest spins the event loop, in which a
    // scan of the small home may already end on a busy machine: what counts is that
    // the phase passed through scanning, not the phase `act` leaves behind.
    bool startsScan(const std::function<void()>& act);
    // Starts a scan and waits until it ends (true) or 30 s pass (false).
    bool scanToEnd();
    bool waitForPhase(AppModel::Phase phase, int timeoutMs = 30000);

    // The id a scan gives the home-relative path (its canonical path).
    std::string idOf(const std::string& relative);
    // Ticks the item with this id, failing the test when the scan did not find it.
    void tick(const std::string& id);

    // The delegates of the list view `list` whose names start with `prefix`, top to
    // bottom, once the list has placed what changed; rows on their way out are left out.
    std::vector<QQuickItem*> rowsOf(const QString& list, const QString& prefix);

    // The named child of `parent`, or null with a test failure.
    QQuickItem* part(QQuickItem* parent, const QString& name);
    QString partText(QQuickItem* parent, const QString& name) {
        QQuickItem* child = part(parent, name);
        return child ? child->property("text").toString() : QString();
    }
    // The `property` of each of `items`, as text, in their order.
    static QStringList propertyOf(const std::vector<QQuickItem*>& items, const char* property);

    // The key of one found item of `categoryID`, or "".
    QString someItemKey(const QString& categoryID);

    // The route through the content view's own function.
    void navigate(const QString& kind, const QString& categoryID = {});

private:
    FakeHome home_;
    std::unique_ptr<AppModel> model_;
    std::unique_ptr<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr;
};
