#include "app/ScreenshotTour.h"

#include "model/AppModel.h"
#include "ui/Platform.h"

#include <QImage>
#include <QTextStream>
#include <QTimer>

namespace {
// Long enough for the reveal pops and fades of the views to come to rest.
constexpr int settleMs = 900;
} // namespace

ScreenshotTour::ScreenshotTour(QQuickWindow& window, AppModel& model, const QString& directory,
                               QObject* parent)
    : QObject(parent), window_(&window), model_(model), directory_(directory) {}

void ScreenshotTour::start() {
    if (!directory_.mkpath(QStringLiteral("."))) {
        QTextStream(stderr) << "veltro: cannot create " << directory_.path() << '\n';
        succeeded_ = false;
        QTimer::singleShot(0, this, &ScreenshotTour::finish);
        return;
    }
    // Pictures of settled states: the scan of a small home is over before any fade
    // would finish.
    Platform::instance()->setReduceMotion(true);
    // frameSwapped may come from the render thread; the queued call lands here.
    connect(
        window_, &QQuickWindow::frameSwapped, this,
        [this] {
            if (started_)
                return;
            started_ = true;
            QTimer::singleShot(settleMs, this, &ScreenshotTour::takeBefore);
        },
        Qt::QueuedConnection);
    window_->update();
}

void ScreenshotTour::takeBefore() {
    save(QStringLiteral("window-before.png"));
    // The scan's category steps end with their state change: by then every field of
    // the step is set, so the picture is of one consistent moment.
    connect(&model_, &AppModel::categoryStateChanged, this, &ScreenshotTour::maybeTakeDuring);
    connect(&model_, &AppModel::phaseChanged, this, [this] {
        if (!scanEnded_ && model_.phase() != AppModel::Phase::scanning)
            afterScan();
    });
    model_.scan();
}

void ScreenshotTour::maybeTakeDuring() {
    if (tookDuring_ || model_.phase() != AppModel::Phase::scanning || model_.scanningCategory().isEmpty())
        return;
    if (model_.scanStep() * 2 < model_.scanStepCount())
        return;
    tookDuring_ = true;
    save(QStringLiteral("window-during.png"));
}

void ScreenshotTour::afterScan() {
    scanEnded_ = true;
    if (!tookDuring_) {
        QTextStream(stderr) << "veltro: the scan ended before it was halfway through\n";
        succeeded_ = false;
    }
    QTimer::singleShot(settleMs, this, [this] {
        save(QStringLiteral("window-after.png"));
        model_.selectRecommended();
        QTimer::singleShot(settleMs, this, &ScreenshotTour::takeSelected);
    });
}

void ScreenshotTour::takeSelected() {
    save(QStringLiteral("window-selected.png"));
    finish();
}

void ScreenshotTour::save(const QString& name) {
    if (!window_) {
        succeeded_ = false;
        return;
    }
    const QString path = directory_.filePath(name);
    // The window is opaque: without the alpha channel and fully compressed the files
    // stay small enough to keep in the repository.
    const QImage image = window_->grabWindow().convertToFormat(QImage::Format_RGB888);
    if (image.isNull() || !image.save(path, "PNG", 0)) {
        QTextStream(stderr) << "veltro: could not save " << path << '\n';
        succeeded_ = false;
        return;
    }
    QTextStream(stdout) << path << '\n';
}

void ScreenshotTour::finish() {
    // Closing, not quitting: the application ends because its last window closed.
    if (window_)
        window_->close();
}
