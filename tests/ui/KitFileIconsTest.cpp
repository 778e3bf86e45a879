// File icons come from the icon theme by the file's type, then by the type's generic
// icon, then from the bundled generic file or folder icon; links are typed by their
// name, never by what they point to.

#include "UiHarness.h"

#include "support/TempTree.h"
#include "ui/FileIconProvider.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QUrl>

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

// A one-size icon theme "kittest" in themes/ holding plain squares of one colour each.
void writeTheme(const TempTree& tree, const QList<QPair<std::string, QColor>>& icons) {
    tree.makeFile("themes/kittest/index.theme",
                  "[Icon Theme]\nName=kittest\nDirectories=32x32\n\n[32x32]\nSize=32\nType=Fixed\n");
    for (const auto& [name, colour] : icons) {
        QImage square(side, side, QImage::Format_ARGB32);
        square.fill(colour);
        ASSERT_TRUE(
            square.save(QString::fromStdString(tree.makeDir("themes/kittest/32x32") + "/" + name + ".png")));
    }
}

} // namespace

TEST(KitFileIcons, FallBackFromTheTypeIconToItsGenericIconToTheBundledOnes) {
    TempTree tree;
    const QString root = QString::fromStdString(tree.root());
    auto at = [&](const char* name) { return root + QLatin1Char('/') + QString::fromUtf8(name); };
    tree.makeDir("Folder");
    for (const char* name : {"notes.txt", "table.csv", "odd #1? 100% ü.txt"})
        tree.makeFile(name, "a,b\n1,2\n");
    // Links to a folder: one named like a text file, one without an extension; and a
    // pipe, which is never opened (that would wait for a writer).
    for (const char* link : {"alias.txt", "alias"})
        tree.makeSymlink(link, tree.path("Folder"));
    tree.makeFifo("pipe.txt");

    // The bundled icons' colours where the probe looks: the white page of the file, the
    // blue front of the folder; and a theme's plain-text and generic text icons.
    const QColor file(255, 255, 255), folder(0x6e, 0xa9, 0xec), plainText(255, 0, 0), genericText(0, 160, 0);
    writeTheme(tree, {{"text-plain", plainText}, {"text-x-generic", genericText}});
    const QString noThemes = QString::fromStdString(tree.makeDir("no-themes"));
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
