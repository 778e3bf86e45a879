// File icons come from the icon theme by the file's type, then by the type's generic
// icon, then from the bundled generic file or folder icon; links are typed by their
// name, never by what they point to.

#include "UiHarness.h"

#include "support/TempTree.h"
#include "ui/FileIconProvider.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QUrl>

#include <unistd.h>

namespace {

constexpr int side = 32;

QColor centre(const QString& path) {
    FileIconProvider provider;
    QSize size;
    const QString id = QString::fromLatin1(QUrl::toPercentEncoding(path));
    const QImage image = provider.requestImage(id, &size, QSize(side, side));
    EXPECT_EQ(size, QSize(side, side)) << path.toStdString();
    return image.pixelColor(side / 2, side * 2 / 3);
}

bool near(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) <= 6 && std::abs(a.green() - b.green()) <= 6 &&
           std::abs(a.blue() - b.blue()) <= 6 && std::abs(a.alpha() - b.alpha()) <= 6;
}

std::string text(const QColor& c) {
    return c.name(QColor::HexArgb).toStdString();
}

// A one-size icon theme holding plain squares of one colour each.
void writeTheme(const QString& root, const QList<QPair<QString, QColor>>& icons) {
    const QString folder = root + QStringLiteral("/kittest");
    ASSERT_TRUE(QDir().mkpath(folder + QStringLiteral("/32x32")));
    QFile index(folder + QStringLiteral("/index.theme"));
    ASSERT_TRUE(index.open(QIODevice::WriteOnly));
    index.write("[Icon Theme]\nName=kittest\nDirectories=32x32\n\n[32x32]\nSize=32\nType=Fixed\n");
    index.close();
    for (const auto& [name, colour] : icons) {
        QImage square(side, side, QImage::Format_ARGB32);
        square.fill(colour);
        ASSERT_TRUE(square.save(folder + QStringLiteral("/32x32/") + name + QStringLiteral(".png")));
    }
}

} // namespace

TEST(KitFileIcons, FallBackFromTheTypeIconToItsGenericIconToTheBundledOnes) {
    TempTree tree;
    const QString root = QString::fromStdString(tree.root());
    const QString text1 = root + QStringLiteral("/notes.txt");
    const QString csv = root + QStringLiteral("/table.csv");
    const QString folder = root + QStringLiteral("/Folder");
    const QString oddName = root + QStringLiteral("/odd #1? 100% \u00fc.txt");
    ASSERT_TRUE(QDir().mkpath(folder));
    for (const QString& path : {text1, csv, oddName}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("a,b\n1,2\n");
    }
    // Links to a folder: one named like a text file, one without an extension.
    const QString textLink = root + QStringLiteral("/alias.txt");
    const QString bareLink = root + QStringLiteral("/alias");
    ASSERT_EQ(::symlink(QFile::encodeName(folder).constData(), QFile::encodeName(textLink).constData()), 0);
    ASSERT_EQ(::symlink(QFile::encodeName(folder).constData(), QFile::encodeName(bareLink).constData()), 0);

    // The bundled icons' colours where the probe looks: the white page of the file,
    // the blue front of the folder.
    const QColor bundledFile(255, 255, 255);
    const QColor bundledFolder(0x6e, 0xa9, 0xec);

    // An empty theme, as on the offscreen platform: only the bundled icons remain.
    const QString noThemes = root + QStringLiteral("/no-themes");
    ASSERT_TRUE(QDir().mkpath(noThemes));
    QIcon::setThemeSearchPaths({noThemes});
    QIcon::setFallbackSearchPaths({});
    QIcon::setThemeName(QString());
    EXPECT_PRED2(near, centre(text1), bundledFile) << text(centre(text1));
    EXPECT_PRED2(near, centre(folder), bundledFolder) << text(centre(folder));
    EXPECT_PRED2(near, centre(bareLink), bundledFile) << text(centre(bareLink));
    // A pipe is never opened (that would wait for a writer).
    const QString fifo = QString::fromStdString(tree.makeFifo("pipe.txt"));
    EXPECT_PRED2(near, centre(fifo), bundledFile) << text(centre(fifo));

    // A theme with the plain-text icon and the generic text icon, nothing for folders.
    const QColor textIcon(255, 0, 0), genericTextIcon(0, 160, 0);
    const QString themes = root + QStringLiteral("/themes");
    writeTheme(themes, {{QStringLiteral("text-plain"), textIcon},
                        {QStringLiteral("text-x-generic"), genericTextIcon}});
    QIcon::setThemeSearchPaths({themes});
    QIcon::setThemeName(QStringLiteral("kittest"));

    EXPECT_PRED2(near, centre(text1), textIcon) << text(centre(text1));
    // text/csv has no icon of its own in the theme: its generic one is used.
    EXPECT_PRED2(near, centre(csv), genericTextIcon) << text(centre(csv));
    EXPECT_PRED2(near, centre(folder), bundledFolder) << text(centre(folder));
    // The links are typed by their names, not as the folder they point to.
    EXPECT_PRED2(near, centre(textLink), textIcon) << text(centre(textLink));
    EXPECT_PRED2(near, centre(bareLink), bundledFile) << text(centre(bareLink));
    EXPECT_PRED2(near, centre(fifo), textIcon) << text(centre(fifo));
    // Reserved URL characters and non-ASCII letters survive the encoding.
    EXPECT_PRED2(near, centre(oddName), textIcon) << text(centre(oddName));
    // A path that does not exist is typed by its name as well.
    EXPECT_PRED2(near, centre(root + QStringLiteral("/gone.txt")), textIcon);

    QIcon::setThemeName(QString());
}

class KitFileIconQml : public QmlTest {};

TEST_F(KitFileIconQml, FileIconLoadsThroughTheProvider) {
    TempTree tree;
    const QString path = QString::fromStdString(tree.root()) + QStringLiteral("/a b#c.txt");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    ASSERT_NE(loadInWindow("FileIcon { objectName: \"icon\"; size: 28 }"), nullptr);
    QObject* icon = find(QStringLiteral("icon"));
    ASSERT_NE(icon, nullptr);
    icon->setProperty("path", path);
    ASSERT_TRUE(UiHarness::waitFor([&] { return icon->property("status").toInt() == 1; }))
        << icon->property("status").toInt();
    EXPECT_DOUBLE_EQ(icon->property("implicitWidth").toDouble(), 28.0);
}
