#pragma once
// Shared by the UI tests: main() (UiTestMain.cpp) creates one QGuiApplication on the
// offscreen platform with the software renderer and records every warning Qt or QML
// reports; QmlTest fails a test that produced any.

#include <QByteArray>
#include <QColor>
#include <QList>
#include <QObject>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include "ui/WindowSearch.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace UiHarness {

// Installs the recording message handler; main() calls it once.
void startRecording();

// Warnings (and worse) recorded since the last call, oldest first.
QStringList takeMessages();

// Spins the event loop until `done` returns true or `timeoutMs` passes; returns the
// last value of `done`. The limit is generous: a machine busy with a build is slow.
bool waitFor(const std::function<bool()>& done, int timeoutMs = 10000);

// The numbers a QML list holds, in order.
std::vector<double> numbersOf(const QVariant& list);

// Whether every channel of `a` and `b` (alpha included) differs by at most `tolerance`.
bool similar(const QColor& a, const QColor& b, int tolerance);

// Spins the event loop until `window` has drawn `count` more frames: long enough for
// anything that was going to move to have moved, without a fixed time.
bool waitForFrames(QQuickWindow* window, int count = 3);

} // namespace UiHarness

// Catches what the code under test hands to QDesktopServices::openUrl for the given
// schemes, instead of starting a browser or file manager.
class UrlRecorder : public QObject {
    Q_OBJECT
public:
    explicit UrlRecorder(const QStringList& schemes = {QStringLiteral("http"), QStringLiteral("https"),
                                                       QStringLiteral("file")});
    ~UrlRecorder() override;
    const QList<QUrl>& urls() const { return urls_; }

public slots:
    void open(const QUrl& url) { urls_ << url; }

private:
    QStringList schemes_;
    QList<QUrl> urls_;
};

// Sets the reduce-motion flag for the scope of a test and restores it afterwards.
class ReduceMotionScope {
public:
    explicit ReduceMotionScope(bool on);
    ~ReduceMotionScope();

private:
    bool previous_;
};

// A test that loads QML into an engine with the application's services installed,
// and fails on any warning recorded while it ran.
class QmlTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Loads a window whose content is `body` (QML text, imports of QtQuick and Veltro
    // in scope) and returns it shown, or null with a test failure.
    QQuickWindow* loadInWindow(const QByteArray& body, int width = 400, int height = 300);

    // The object named `name` in the loaded window (items a Repeater made included), or null.
    template <typename T = QObject> T* find(const QString& name) {
        return qobject_cast<T*>(WindowSearch::firstNamed(window_, name));
    }

    QQuickWindow* window() const { return window_; }

private:
    std::unique_ptr<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr;
};
