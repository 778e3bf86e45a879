#pragma once
// Saves pictures of the window for review: before a scan, halfway through it, after
// it, with the recommended items checked; then the overview, a category with one item
// checked, the confirmation sheet, the result of cleaning that item, the measured
// System Data screen, and a few screens at the minimum, default and a large window
// size. Finally closes the window, which ends the application like a
// user closing it would.
//
// The tour cleans for real, so it only does so in a home folder made for it: one that
// holds the marker file below, with every chosen item inside that home.

#include <QDir>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QString>

#include <functional>

class AppModel;
class QQuickItem;

class ScreenshotTour : public QObject {
    Q_OBJECT

public:
    // The file that marks a home folder as made up for the tour.
    static constexpr const char* homeMarker = ".veltro-screenshot-home";

    ScreenshotTour(QQuickWindow& window, AppModel& model, const QString& directory,
                   QObject* parent = nullptr);
    ~ScreenshotTour() override;

    // Starts once the window has shown its first frame.
    void start();
    // False when a picture could not be taken or saved, or a step of the tour did not
    // come about in time.
    bool succeeded() const { return succeeded_; }

private:
    void takeBefore();
    void maybeTakeDuring();
    void afterScan();
    void showOverview();
    void showCategory();
    void checkFirstItem();
    void openConfirm();
    void closeConfirm();
    void cleanChecked();
    void closeResult();
    void showSystemData();
    // Pictures at three window sizes; `step` counts size and screen together.
    void showSize(int step);

    // Runs `next` once `ready` holds, asking every 50 ms; when `timeoutMs` pass first,
    // the tour fails, naming `what` it waited for, and ends.
    void when(std::function<bool()> ready, const QString& what, std::function<void()> next,
              int timeoutMs = 30000);
    // Lets the views come to rest, saves the picture `name`, then runs `next`.
    void shoot(const QString& name, std::function<void()> next);
    // Every object named `name` in the window, popups and their contents included.
    QList<QObject*> named(const QString& name) const;
    // The first visible item named `name`, or null.
    QQuickItem* item(const QString& name) const;
    // The sheet (a popup) named `name` is fully open, or fully closed.
    bool sheetOpen(const QString& name) const;
    bool sheetClosed(const QString& name) const;
    void navigate(const QString& kind, const QString& categoryId = {});
    // A real left click at the centre of `target`; the pointer then leaves the window
    // so that no hover effect shows in the next picture.
    void click(QQuickItem* target);
    bool scrollToTop(const QString& name);
    void fail(const QString& message);
    void save(const QString& name);
    void finish();

    QPointer<QQuickWindow> window_;
    AppModel& model_;
    QDir directory_;
    QString categoryId_;
    bool started_ = false;
    bool tookDuring_ = false;
    bool scanEnded_ = false;
    bool finished_ = false;
    bool succeeded_ = true;
};
