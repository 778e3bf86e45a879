#pragma once
// Desktop services for the views: the support links, opening a web address,
// revealing a file in the file manager, and the desktop's reduce-motion setting.
// One process-wide instance, owned by C++ and shared with every QML engine.
// Main thread only.

#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QQmlEngine;
class QJSEngine;

class Platform : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QUrl website READ website CONSTANT)
    Q_PROPERTY(QUrl coffee READ coffee CONSTANT)
    Q_PROPERTY(QUrl terms READ terms CONSTANT)
    Q_PROPERTY(QUrl privacy READ privacy CONSTANT)
    Q_PROPERTY(QString websiteHost READ websiteHost CONSTANT)
    Q_PROPERTY(QUrl fullDiskAccessHelpUrl READ fullDiskAccessHelpUrl CONSTANT)
    Q_PROPERTY(bool reduceMotion READ reduceMotion WRITE setReduceMotion NOTIFY reduceMotionChanged)

public:
    // The shared instance; the first call reads the desktop's animation setting
    // (a child process limited to one second).
    static Platform* instance();
    static Platform* create(QQmlEngine*, QJSEngine*);

    QUrl website() const;
    QUrl coffee() const;
    QUrl terms() const;
    QUrl privacy() const;
    QString websiteHost() const;
    QUrl fullDiskAccessHelpUrl() const;

    bool reduceMotion() const { return reduceMotion_; }
    // Tests and the desktop's setting both come through here.
    void setReduceMotion(bool on);

    // Hands the address to the desktop's default handler; false when none took it.
    Q_INVOKABLE bool openUrl(const QUrl& url);

    // Asks the file manager (org.freedesktop.FileManager1.ShowItems on the session
    // bus) to show the item selected; when no file manager answers within the time
    // limit, opens the item's parent folder instead. Returns at once; the outcome is
    // announced by revealFinished.
    Q_INVOKABLE void revealInFileViewer(const QString& path);

    // Milliseconds a file manager has to answer a reveal request.
    static constexpr int revealTimeoutMs = 2500;

    // The desktop's wish, read from `gsettings get org.gnome.desktop.interface
    // enable-animations` within `timeoutMs`; false when it cannot be read.
    static bool readDesktopReduceMotion(int timeoutMs = 1000);

signals:
    void reduceMotionChanged();
    // `byFileManager` is true when the file manager accepted the request, false when
    // the parent folder was opened instead.
    void revealFinished(const QString& path, bool byFileManager);

private:
    explicit Platform(bool reduceMotion);

    bool reduceMotion_ = false;
};
