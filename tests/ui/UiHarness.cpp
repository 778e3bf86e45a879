#include "UiHarness.h"

#include "ui/Platform.h"
#include "ui/UiServices.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QMutex>
#include <QMutexLocker>
#include <QTest>

#include <cstdlib>

namespace UiHarness {
namespace {

QMutex mutex;
QStringList recorded;
QtMessageHandler previous = nullptr;

void record(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg) {
        QMutexLocker lock(&mutex);
        recorded << message;
    }
    if (previous)
        previous(type, context, message);
}

} // namespace

void startRecording() {
    previous = qInstallMessageHandler(record);
}

QStringList takeMessages() {
    QMutexLocker lock(&mutex);
    QStringList taken;
    taken.swap(recorded);
    return taken;
}

bool waitFor(const std::function<bool()>& done, int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > timeoutMs)
            return done();
        QTest::qWait(10);
    }
    return true;
}

std::vector<double> numbersOf(const QVariant& list) {
    std::vector<double> out;
    for (const QVariant& each : list.toList())
        out.push_back(each.toDouble());
    return out;
}

bool similar(const QColor& a, const QColor& b, int tolerance) {
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance && std::abs(a.alpha() - b.alpha()) <= tolerance;
}

bool waitForFrames(QQuickWindow* window, int count) {
    int drawn = 0;
    const QMetaObject::Connection counting =
        QObject::connect(window, &QQuickWindow::frameSwapped, window, [&] { ++drawn; });
    const bool done = waitFor([&] {
        window->update();
        return drawn >= count;
    });
    QObject::disconnect(counting);
    return done;
}

} // namespace UiHarness

UrlRecorder::UrlRecorder(const QStringList& schemes) : schemes_(schemes) {
    for (const QString& scheme : schemes_)
        QDesktopServices::setUrlHandler(scheme, this, "open");
}

UrlRecorder::~UrlRecorder() {
    for (const QString& scheme : schemes_)
        QDesktopServices::unsetUrlHandler(scheme);
}

ReduceMotionScope::ReduceMotionScope(bool on) : previous_(Platform::instance()->reduceMotion()) {
    Platform::instance()->setReduceMotion(on);
}

ReduceMotionScope::~ReduceMotionScope() {
    Platform::instance()->setReduceMotion(previous_);
}

void QmlTest::SetUp() {
    UiHarness::takeMessages();
}

void QmlTest::TearDown() {
    if (window_)
        window_->close();
    engine_.reset();
    QCoreApplication::processEvents();
    const QStringList messages = UiHarness::takeMessages();
    EXPECT_TRUE(messages.isEmpty()) << "Warnings while the test ran:\n" << messages.join('\n').toStdString();
}

QQuickWindow* QmlTest::loadInWindow(const QByteArray& body, int width, int height) {
    const QByteArray text = "import QtQuick\n"
                            "import QtQuick.Window\n"
                            "import Veltro\n"
                            "Window {\n"
                            "    width: " +
                            QByteArray::number(width) + "; height: " + QByteArray::number(height) +
                            "\n    visible: true\n" + body + "\n}\n";
    if (!engine_) {
        engine_ = std::make_unique<QQmlApplicationEngine>();
        UiServices::install(*engine_);
    }
    engine_->loadData(text, QUrl(QStringLiteral("qrc:/kit-test/TestWindow.qml")));
    const auto roots = engine_->rootObjects();
    window_ = roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.last());
    EXPECT_NE(window_, nullptr) << "The test window did not load";
    if (window_) {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window_));
    }
    return window_;
}
