#include "ui/Platform.h"

#include "ui/SupportLinks.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QQmlEngine>

Platform::Platform(bool reduceMotion) : reduceMotion_(reduceMotion) {}

Platform* Platform::instance() {
    static Platform* const shared = new Platform(readDesktopReduceMotion());
    return shared;
}

Platform* Platform::create(QQmlEngine*, QJSEngine*) {
    Platform* shared = instance();
    QQmlEngine::setObjectOwnership(shared, QQmlEngine::CppOwnership);
    return shared;
}

QUrl Platform::website() const {
    return SupportLinks::website();
}
QUrl Platform::coffee() const {
    return SupportLinks::coffee();
}
QUrl Platform::terms() const {
    return SupportLinks::terms();
}
QUrl Platform::privacy() const {
    return SupportLinks::privacy();
}
QString Platform::websiteHost() const {
    return SupportLinks::websiteHost();
}
QUrl Platform::fullDiskAccessHelpUrl() const {
    return SupportLinks::fullDiskAccessHelp();
}

void Platform::setReduceMotion(bool on) {
    if (reduceMotion_ == on)
        return;
    reduceMotion_ = on;
    emit reduceMotionChanged();
}

bool Platform::openUrl(const QUrl& url) {
    return QDesktopServices::openUrl(url);
}

void Platform::revealInFileViewer(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const QUrl parent = QUrl::fromLocalFile(QFileInfo(absolute).absolutePath());
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openUrl(parent);
        emit revealFinished(path, false);
        return;
    }
    // A plain asynchronous call: a proxy object would introspect the service
    // synchronously first.
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(absolute).toString(QUrl::FullyEncoded)} << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, revealTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, path, parent](QDBusPendingCallWatcher* w) {
                const bool shown = !w->isError();
                if (!shown)
                    openUrl(parent);
                w->deleteLater();
                emit revealFinished(path, shown);
            });
}

bool Platform::readDesktopReduceMotion(int timeoutMs) {
    QProcess gsettings;
    gsettings.setProcessChannelMode(QProcess::SeparateChannels);
    gsettings.setStandardInputFile(QProcess::nullDevice());
    gsettings.start(QStringLiteral("gsettings"),
                    {QStringLiteral("get"), QStringLiteral("org.gnome.desktop.interface"),
                     QStringLiteral("enable-animations")});
    if (!gsettings.waitForStarted(timeoutMs))
        return false;
    if (!gsettings.waitForFinished(timeoutMs)) {
        gsettings.kill();
        gsettings.waitForFinished(100);
        return false;
    }
    if (gsettings.exitStatus() != QProcess::NormalExit || gsettings.exitCode() != 0)
        return false;
    return gsettings.readAllStandardOutput().trimmed() == "false";
}
