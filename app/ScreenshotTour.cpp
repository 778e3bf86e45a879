#include "app/ScreenshotTour.h"

#include "model/AppModel.h"
#include "platform/Environment.h"
#include "removal/Privileged.h"
#include "removal/Shell.h"
#include "ui/Platform.h"
#include "ui/WindowSearch.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QImage>
#include <QMouseEvent>
#include <QQuickItem>
#include <QTextStream>
#include <QTimer>

#include <iterator>
#include <utility>

namespace {

// Long enough for the reveal pops, fades and sheet transitions of the views to come to
// rest, and for file icons to arrive.
constexpr int settleMs = 900;
// Cleaning and measuring a small made-up home take a moment, not minutes.
constexpr int workTimeoutMs = 60000;

// The category pictured with its items, the one whose checked item is cleaned.
const QString picturedCategory = QStringLiteral("user.caches");

void sendMouse(QQuickWindow* window, QEvent::Type type, QPointF at, Qt::MouseButtons buttons) {
    QMouseEvent event(type, at, window->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &event);
}

} // namespace

ScreenshotTour::ScreenshotTour(QQuickWindow& window, AppModel& model, const QString& directory,
                               QObject* parent)
    : QObject(parent), window_(&window), model_(model), directory_(directory) {}

ScreenshotTour::~ScreenshotTour() {
    Privileged::setAuthorizationTool({});
}

void ScreenshotTour::start() {
    if (!directory_.mkpath(QStringLiteral("."))) {
        fail(QStringLiteral("cannot create ") + directory_.path());
        QTimer::singleShot(0, this, &ScreenshotTour::finish);
        return;
    }
    // Pictures of settled states: the scan of a small home is over before any fade
    // would finish.
    Platform::instance()->setReduceMotion(true);
    // The System Data screen is pictured measured. No password dialog can be answered
    // here, and the tour's home is made up: its measurement runs (the helper started
    // directly) as this user, which reads the made-up folders and finds the system's
    // own mostly absent.
    Privileged::setAuthorizationTool(
        [](const Privileged::Launch& launch) { return Privileged::runProcess(launch.command, launch); });
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
    if (!tookDuring_)
        fail(QStringLiteral("the scan ended before it was halfway through"));
    shoot(QStringLiteral("window-after.png"), [this] {
        model_.selectRecommended();
        shoot(QStringLiteral("window-selected.png"), [this] { showOverview(); });
    });
}

void ScreenshotTour::showOverview() {
    navigate(QStringLiteral("overview"));
    when([this] { return item(QStringLiteral("overviewPage")) && item(QStringLiteral("sidebarList")); },
         QStringLiteral("the overview"),
         [this] {
             // The sidebar followed the scan down the list; both start at their tops.
             if (!scrollToTop(QStringLiteral("overviewPage")) ||
                 !scrollToTop(QStringLiteral("sidebarList"))) {
                 finish();
                 return;
             }
             shoot(QStringLiteral("overview.png"), [this] { showCategory(); });
         });
}

void ScreenshotTour::showCategory() {
    categoryId_ = picturedCategory;
    if (model_.itemCountOf(categoryId_) == 0) {
        fail(QStringLiteral("the scan found nothing in ") + categoryId_ + QStringLiteral(" to picture"));
        finish();
        return;
    }
    // Only what the picture shows checked is cleaned later.
    model_.clearSelection();
    navigate(QStringLiteral("category"), categoryId_);
    when(
        [this] {
            const QQuickItem* view = item(QStringLiteral("categoryDetailView"));
            return view && view->property("categoryId").toString() == categoryId_ &&
                   !named(QStringLiteral("itemRow")).isEmpty();
        },
        QStringLiteral("the items of ") + categoryId_, [this] { checkFirstItem(); });
}

void ScreenshotTour::checkFirstItem() {
    QQuickItem* check = nullptr;
    for (QObject* row : named(QStringLiteral("itemRow"))) {
        if (row->property("index").toInt() == 0) {
            check = row->findChild<QQuickItem*>(QStringLiteral("itemCheck"));
            break;
        }
    }
    if (!check) {
        fail(QStringLiteral("the first item of ") + categoryId_ + QStringLiteral(" has no check box"));
        finish();
        return;
    }
    click(check);
    when([this] { return model_.selectionCount() == 1 && model_.selectedCount(categoryId_) == 1; },
         QStringLiteral("the click to check an item"),
         [this] { shoot(QStringLiteral("category.png"), [this] { openConfirm(); }); });
}

void ScreenshotTour::openConfirm() {
    model_.requestClean(categoryId_);
    when([this] { return model_.showConfirm() && sheetOpen(QStringLiteral("confirmSheet")); },
         QStringLiteral("the confirmation sheet"),
         [this] { shoot(QStringLiteral("confirm-sheet.png"), [this] { closeConfirm(); }); });
}

void ScreenshotTour::closeConfirm() {
    QQuickItem* cancel = item(QStringLiteral("confirmCancel"));
    if (!cancel) {
        fail(QStringLiteral("the confirmation sheet has no Cancel button"));
        finish();
        return;
    }
    click(cancel);
    when([this] { return !model_.showConfirm() && sheetClosed(QStringLiteral("confirmSheet")); },
         QStringLiteral("the confirmation sheet to close"), [this] { cleanChecked(); });
}

void ScreenshotTour::cleanChecked() {
    const std::string& home = Environment::homeFolder();
    if (home.size() < 2 || !QFileInfo::exists(QString::fromStdString(home + "/" + homeMarker))) {
        fail(QStringLiteral("the home folder has no ") + QString::fromLatin1(homeMarker) +
             QStringLiteral(", so nothing is cleaned and no result is pictured"));
        showSystemData();
        return;
    }
    for (const ScanItem& chosen : model_.itemsToClean()) {
        if (!chosen.url || !chosen.url->starts_with(home + "/")) {
            fail(QStringLiteral("an item to clean lies outside the made-up home: ") +
                 QString::fromStdString(chosen.name));
            finish();
            return;
        }
    }
    model_.clean();
    when([this] { return model_.showResult() && sheetOpen(QStringLiteral("resultSheet")); },
         QStringLiteral("the result of the clean"),
         [this] {
             if (model_.lastResultInfo().value(QStringLiteral("succeededCount")).toInt() < 1)
                 fail(QStringLiteral("the clean removed nothing"));
             shoot(QStringLiteral("result-sheet.png"), [this] { closeResult(); });
         },
         workTimeoutMs);
}

void ScreenshotTour::closeResult() {
    QQuickItem* done = item(QStringLiteral("resultDone"));
    if (!done) {
        fail(QStringLiteral("the result sheet has no Done button"));
        finish();
        return;
    }
    click(done);
    when([this] { return !model_.showResult() && sheetClosed(QStringLiteral("resultSheet")); },
         QStringLiteral("the result sheet to close"), [this] { showSystemData(); });
}

void ScreenshotTour::showSystemData() {
    navigate(QStringLiteral("systemData"));
    when(
        [this] {
            const QQuickItem* analyze = item(QStringLiteral("analyzeButton"));
            return analyze && analyze->isEnabled();
        },
        QStringLiteral("the System Data screen"),
        [this] {
            click(item(QStringLiteral("analyzeButton")));
            if (!model_.systemAnalyzing()) {
                fail(QStringLiteral("the click on Analyze started nothing"));
                finish();
                return;
            }
            when([this] { return !model_.systemAnalyzing(); }, QStringLiteral("the System Data analysis"),
                 [this] {
                     if (!model_.hasSystemReport())
                         fail(QStringLiteral("the System Data analysis failed: ") + model_.systemMessage());
                     shoot(QStringLiteral("system-data.png"), [this] { showSize(0); });
                 },
                 workTimeoutMs);
        });
}

void ScreenshotTour::showSize(int step) {
    // The minimum, the default and a large window, each with the overview, the large
    // files and System Data: from small to large, as someone resizing it would.
    static const QSize sizes[] = {{960, 600}, {1180, 760}, {1400, 900}};
    static const char* const screens[] = {"overview", "large.files", "systemData"};
    if (!window_ || step >= int(std::size(sizes) * std::size(screens))) {
        finish();
        return;
    }
    const QSize size = sizes[step / std::size(screens)];
    const QString screen = QString::fromLatin1(screens[step % std::size(screens)]);
    if (step == 0)
        model_.setAll(QStringLiteral("large.files"), true);
    window_->resize(size);
    if (screen == QLatin1String("large.files"))
        navigate(QStringLiteral("category"), screen);
    else
        navigate(screen);
    const QString name = QStringLiteral("size-%1x%2-%3.png").arg(size.width()).arg(size.height()).arg(screen);
    when(
        [this, size] {
            const QQuickWindow* shown = window_.data();
            return shown != nullptr && shown->size() == size;
        },
        QStringLiteral("the window at its new size"),
        [this, name, step] { shoot(name, [this, step] { showSize(step + 1); }); });
}

void ScreenshotTour::when(std::function<bool()> ready, const QString& what, std::function<void()> next,
                          int timeoutMs) {
    if (finished_)
        return;
    auto* poll = new QTimer(this);
    const QDeadlineTimer deadline(timeoutMs);
    connect(poll, &QTimer::timeout, this,
            [this, poll, deadline, what, ready = std::move(ready), next = std::move(next)] {
                if (finished_) {
                    poll->deleteLater();
                } else if (ready()) {
                    poll->deleteLater();
                    poll->stop();
                    next();
                } else if (deadline.hasExpired()) {
                    poll->deleteLater();
                    poll->stop();
                    fail(QStringLiteral("gave up waiting for ") + what);
                    finish();
                }
            });
    poll->start(50);
}

void ScreenshotTour::shoot(const QString& name, std::function<void()> next) {
    if (finished_)
        return;
    QTimer::singleShot(settleMs, this, [this, name, next = std::move(next)] {
        if (finished_)
            return;
        save(name);
        next();
    });
}

QList<QObject*> ScreenshotTour::named(const QString& name) const {
    return WindowSearch::allNamed(window_, name);
}

QQuickItem* ScreenshotTour::item(const QString& name) const {
    for (QObject* object : named(name)) {
        auto* found = qobject_cast<QQuickItem*>(object);
        if (found && found->isVisible())
            return found;
    }
    return nullptr;
}

bool ScreenshotTour::sheetOpen(const QString& name) const {
    const QList<QObject*> found = named(name);
    return !found.isEmpty() && found.constFirst()->property("opened").toBool();
}

bool ScreenshotTour::sheetClosed(const QString& name) const {
    const QList<QObject*> found = named(name);
    return !found.isEmpty() && !found.constFirst()->property("visible").toBool();
}

void ScreenshotTour::navigate(const QString& kind, const QString& categoryId) {
    const QList<QObject*> content = named(QStringLiteral("contentView"));
    if (content.isEmpty() || !QMetaObject::invokeMethod(content.constFirst(), "navigate",
                                                        Q_ARG(QVariant, kind), Q_ARG(QVariant, categoryId)))
        fail(QStringLiteral("could not show the screen ") + kind);
}

void ScreenshotTour::click(QQuickItem* target) {
    if (!window_ || !target)
        return;
    const QPointF centre = target->mapToScene(QPointF(target->width() / 2, target->height() / 2));
    sendMouse(window_, QEvent::MouseButtonPress, centre, Qt::LeftButton);
    sendMouse(window_, QEvent::MouseButtonRelease, centre, Qt::NoButton);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(window_, &leave);
}

bool ScreenshotTour::scrollToTop(const QString& name) {
    QQuickItem* flickable = item(name);
    if (!flickable) {
        fail(QStringLiteral("nothing named ") + name + QStringLiteral(" to scroll"));
        return false;
    }
    const qreal top = flickable->property("originY").toReal() - flickable->property("topMargin").toReal();
    flickable->setProperty("contentY", top);
    return true;
}

void ScreenshotTour::fail(const QString& message) {
    QTextStream(stderr) << "veltro: " << message << '\n';
    succeeded_ = false;
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
        fail(QStringLiteral("could not save ") + path);
        return;
    }
    QTextStream(stdout) << path << '\n';
}

void ScreenshotTour::finish() {
    if (finished_)
        return;
    finished_ = true;
    // Closing, not quitting: the application ends because its last window closed.
    if (window_)
        window_->close();
}
