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
    auto at = [&](const char* name) { return root + QLatin1Char('/') + QString::fromUtf8(name); };
    ASSERT_TRUE(QDir().mkpath(at("Folder")));
    for (const char* name : {"notes.txt", "table.csv", "odd #1? 100% ü.txt"}) {
        QFile file(at(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("a,b\n1,2\n");
    }
    // Links to a folder: one named like a text file, one without an extension; and a
    // pipe, which is never opened (that would wait for a writer).
    for (const char* link : {"alias.txt", "alias"})
        ASSERT_EQ(
            ::symlink(QFile::encodeName(at("Folder")).constData(), QFile::encodeName(at(link)).constData()),
            0);
    tree.makeFifo("pipe.txt");

    // The bundled icons' colours where the probe looks: the white page of the file, the
    // blue front of the folder; and a theme's plain-text and generic text icons.
    const QColor file(255, 255, 255), folder(0x6e, 0xa9, 0xec), plainText(255, 0, 0), genericText(0, 160, 0);
    writeTheme(root + QStringLiteral("/themes"),
               {{QStringLiteral("text-plain"), plainText}, {QStringLiteral("text-x-generic"), genericText}});
    const QString noThemes = root + QStringLiteral("/no-themes");
    ASSERT_TRUE(QDir().mkpath(noThemes));
    QIcon::setFallbackSearchPaths({});
    struct Case {
        const char* name;
        QColor bare, themed; // without an icon theme (as on the offscreen platform), with one
    };
    const Case cases[] = {
        {"notes.txt", file, plainText},
        // text/csv has no icon of its own in the theme: its generic one is used.
        {"table.csv", file, genericText},
        {"Folder", folder, folder},
        // Links are typed by their names, not as the folder they point to.
        {"alias.txt", file, plainText},
        {"alias", file, file},
        {"pipe.txt", file, plainText},
        // Reserved URL characters and non-ASCII letters survive the encoding.
        {"odd #1? 100% ü.txt", file, plainText},
        // A path that does not exist is typed by its name as well.
        {"gone.txt", file, plainText},
    };
    for (const bool themed : {false, true}) {
        QIcon::setThemeSearchPaths({themed ? root + QStringLiteral("/themes") : noThemes});
        QIcon::setThemeName(themed ? QStringLiteral("kittest") : QString());
        for (const Case& each : cases) {
            const QColor shown = centre(at(each.name));
            EXPECT_PRED3(UiHarness::similar, shown, themed ? each.themed : each.bare, 6)
                << each.name << ": " << shown.name(QColor::HexArgb).toStdString();
        }
    }
    QIcon::setThemeName(QString());
}
