#include "app/HeadlessRun.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTextStream>
#include <QTimer>

#include <cmath>
#include <unistd.h>

namespace HeadlessRun {

bool waitUntil(const std::function<bool()>& done, int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    // Sleeps between events: the model's queued calls wake the loop, and the tick
    // bounds how late a timeout is noticed. (The overload of processEvents with a
    // time limit never waits, which would spin a core the scan needs.)
    QTimer tick;
    tick.start(100);
    while (!done()) {
        if (timeoutMs >= 0 && timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
    }
    return true;
}

bool isTerminal(int fd) {
    return ::isatty(fd) == 1;
}

void scan(AppModel& model, bool showProgress) {
    QTextStream err(stderr);
    QMetaObject::Connection onStatus, onProgress;
    auto draw = [&model, &err]() {
        const int percent = static_cast<int>(std::floor(model.scanProgress() * 100.0));
        err << "\r\033[2K" << model.statusText() << "  " << percent << "%" << Qt::flush;
    };
    if (showProgress) {
        onStatus = QObject::connect(&model, &AppModel::statusTextChanged, &model, draw);
        onProgress = QObject::connect(&model, &AppModel::scanProgressChanged, &model, draw);
    }
    model.scan();
    waitUntil([&model] { return model.phase() != AppModel::Phase::scanning; });
    if (showProgress) {
        QObject::disconnect(onStatus);
        QObject::disconnect(onProgress);
        err << "\r\033[2K" << Qt::flush;
    }
}

} // namespace HeadlessRun
