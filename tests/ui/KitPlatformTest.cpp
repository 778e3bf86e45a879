// Revealing a file in the file manager over D-Bus (or opening its folder when none
// answers), and reading the desktop's reduce-motion wish.

#include "UiHarness.h"

#include "support/TempTree.h"
#include "ui/Platform.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QProcess>
#include <QSignalSpy>

namespace {

// Stands in for a file manager on the bus: records what it was asked to show.
class FakeFileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
public:
    QStringList shown;
public slots:
    void ShowItems(const QStringList& uris, const QString&) { shown << uris; }
};

// A private session bus for this process, ended with the test.
class PrivateBus {
public:
    bool start() {
        // Without dbus-daemon on the search path it never starts.
        daemon_.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                      QStringLiteral("--print-address=1")});
        if (!daemon_.waitForStarted(5000) || !daemon_.waitForReadyRead(5000))
            return false;
        address_ = QString::fromUtf8(daemon_.readLine().trimmed());
        return !address_.isEmpty();
    }
    ~PrivateBus() {
        daemon_.kill();
        daemon_.waitForFinished(3000);
    }
    const QString& address() const { return address_; }

private:
    QProcess daemon_;
    QString address_;
};

// Puts a `gsettings` that runs `script` first on PATH for the scope.
class FakeGsettings {
public:
    explicit FakeGsettings(const std::string& script) : previous_(qgetenv("PATH")) {
        tree_.makeScript("bin/gsettings", script);
        qputenv("PATH", QByteArray::fromStdString(tree_.path("bin")) + ':' + previous_);
    }
    ~FakeGsettings() { qputenv("PATH", previous_); }

private:
    TempTree tree_;
    QByteArray previous_;
};

} // namespace

TEST(KitPlatform, RevealAsksTheFileManagerOrOpensTheParentFolder) {
    PrivateBus bus;
    if (!bus.start())
        GTEST_SKIP() << "dbus-daemon is not available";
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    ASSERT_TRUE(QDBusConnection::sessionBus().isConnected());

    TempTree tree;
    const QString file = QString::fromStdString(tree.makeFile("Reports/Q1 #final.pdf", "x"));
    const QUrl parent = QUrl::fromLocalFile(QString::fromStdString(tree.path("Reports")));
    Platform* platform = Platform::instance();
    UrlRecorder opened;

    // What the one revealFinished of a reveal carries: the file, and whether a file
    // manager showed it.
    auto reveal = [&] {
        QSignalSpy finished(platform, &Platform::revealFinished);
        platform->revealInFileViewer(file);
        EXPECT_TRUE(UiHarness::waitFor([&] { return finished.count() == 1; }, 5000));
        return finished.value(0);
    };

    // Nobody owns the file manager's name: the folder opens instead.
    const QVariantList toFolder = reveal();
    EXPECT_EQ(toFolder.value(0).toString(), file);
    EXPECT_FALSE(toFolder.value(1).toBool());
    EXPECT_EQ(opened.urls(), QList<QUrl>{parent});

    // A file manager on the bus is asked to show the file itself.
    QDBusConnection service =
        QDBusConnection::connectToBus(bus.address(), QStringLiteral("kit-file-manager"));
    ASSERT_TRUE(service.isConnected());
    FakeFileManager manager;
    ASSERT_TRUE(service.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                                       QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(service.registerService(QStringLiteral("org.freedesktop.FileManager1")));
    EXPECT_TRUE(reveal().value(1).toBool());
    ASSERT_EQ(manager.shown.size(), 1);
    // The '#' of the name is encoded, or it would end the path.
    EXPECT_EQ(QUrl(manager.shown.first()), QUrl::fromLocalFile(file)) << manager.shown.first().toStdString();
    EXPECT_EQ(opened.urls().size(), 1) << "no folder opened this time";
    service.unregisterService(QStringLiteral("org.freedesktop.FileManager1"));
    QDBusConnection::disconnectFromBus(QStringLiteral("kit-file-manager"));
}

TEST(KitPlatform, ReducedMotionFollowsTheDesktopSettingWithinItsTimeLimit) {
    // A missing schema is an error: motion stays on. A tool that hangs is given up on.
    const std::pair<std::string, bool> answers[] = {
        {"[ \"$*\" = 'get org.gnome.desktop.interface enable-animations' ] && echo false", true},
        {"echo true", false},
        {"echo 'No such schema' >&2; exit 1", false},
        {"exec sleep 30", false},
    };
    for (const auto& [script, reduce] : answers) {
        FakeGsettings gsettings(script);
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(Platform::readDesktopReduceMotion(300), reduce) << script;
        EXPECT_LT(timer.elapsed(), 20000) << script;
    }
}

#include "KitPlatformTest.moc"
