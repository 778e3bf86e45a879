#pragma once
// Saves pictures of the window for review: before a scan, halfway through it, after
// it, and with the recommended items checked; then closes the window, which ends the
// application like a user closing it would.

#include <QDir>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QString>

class AppModel;

class ScreenshotTour : public QObject {
    Q_OBJECT

public:
    ScreenshotTour(QQuickWindow& window, AppModel& model, const QString& directory,
                   QObject* parent = nullptr);

    // Starts once the window has shown its first frame.
    void start();
    // False when a picture could not be taken or saved, or the scan never got halfway.
    bool succeeded() const { return succeeded_; }

private:
    void takeBefore();
    void maybeTakeDuring();
    void afterScan();
    void takeSelected();
    void save(const QString& name);
    void finish();

    QPointer<QQuickWindow> window_;
    AppModel& model_;
    QDir directory_;
    bool started_ = false;
    bool tookDuring_ = false;
    bool scanEnded_ = false;
    bool succeeded_ = true;
};
