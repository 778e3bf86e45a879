// Every symbol name the views can ask for has an icon that exists and draws, and the
// symbol image provider tints and sizes what it draws.

#include "UiHarness.h"

#include "catalogue/CleanupRules.h"
#include "support/PathQueries.h"
#include "systemdata/SystemDataCatalog.h"
#include "ui/SymbolImageProvider.h"
#include "ui/SymbolMap.h"

#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QSet>

namespace {

// The string literals on the line of each `<property>:` binding in `text`.
void collectLiterals(const QString& text, const QString& property, QSet<QString>* names) {
    static const QRegularExpression literal(QStringLiteral("\"([^\"]+)\""));
    const QRegularExpression binding(QStringLiteral("\\b%1\\s*:([^\\n]*)").arg(property));
    for (auto match = binding.globalMatch(text); match.hasNext();) {
        const QString expression = match.next().captured(1);
        for (auto found = literal.globalMatch(expression); found.hasNext();)
            names->insert(found.next().captured(1));
    }
}

// Symbol names written in the QML of ui/: `symbol: "…"`, `systemImage: "…"`, and a
// Symbol's own `name: "…"` (no other kind of object in ui/ binds a `name`).
QSet<QString> namesInQml() {
    QSet<QString> names;
    QDirIterator it(QStringLiteral(VELTRO_SOURCE_DIR "/ui"), {QStringLiteral("*.qml")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString text = QString::fromStdString(readFile(path.toStdString()));
        for (const char* property : {"symbol", "systemImage", "name"})
            collectLiterals(text, QString::fromLatin1(property), &names);
    }
    return names;
}

bool hasInk(const QImage& image) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 0)
                return true;
    return false;
}

} // namespace

TEST(KitSymbols, EveryNameInUseHasAnIconThatDraws) {
    QSet<QString> names = namesInQml();
    // The footer's own symbol proves the scan reads the kit.
    ASSERT_TRUE(names.contains(QStringLiteral("cup.and.saucer.fill")));
    for (const CleanCategory& category : CleanupRules::categories())
        names.insert(QString::fromStdString(category.symbol));
    for (const SystemDataEntry& entry : SystemDataCatalog::entries())
        names.insert(QString::fromStdString(entry.symbol));
    // Plus every name of the table, so a mistyped file name is caught too.
    for (const QString& name : SymbolMap::symbolNames())
        names.insert(name);

    QStringList unmapped, missing, blank;
    for (const QString& name : names) {
        const QString path = SymbolMap::resourcePath(name);
        if (path.isEmpty())
            unmapped << name;
        else if (!QFile::exists(path))
            missing << name + QStringLiteral(" -> ") + path;
        else if (!hasInk(SymbolImageProvider::render(name, Qt::black, 24)))
            blank << name;
    }
    EXPECT_TRUE(unmapped.isEmpty()) << "No icon mapped for: " << unmapped.join(", ").toStdString();
    EXPECT_TRUE(missing.isEmpty()) << "Icon file missing: " << missing.join(", ").toStdString();
    EXPECT_TRUE(blank.isEmpty()) << "Icon draws nothing: " << blank.join(", ").toStdString();
}

TEST(KitSymbols, ProviderTintsAtTheRequestedSize) {
    SymbolImageProvider provider;
    QSize size;
    // Red ink, at full strength; an opacity in the colour scales the ink's (the '#' may
    // come encoded).
    for (const auto& [id, alpha] : {std::pair{"trash?color=ff0000", 255}, {"trash?color=%2380ff0000", 128}}) {
        const QImage image = provider.requestImage(QString::fromLatin1(id), &size, QSize(24, 24));
        EXPECT_EQ(size, QSize(24, 24));
        ASSERT_EQ(image.size(), QSize(24, 24));
        int inked = 0, strongest = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                inked += pixel.alpha() > 0;
                strongest = std::max(strongest, pixel.alpha());
                if (pixel.alpha() > 0) {
                    EXPECT_TRUE(pixel.green() == 0 && pixel.blue() == 0 && pixel.red() > 200) << id;
                }
            }
        EXPECT_GT(inked, 24 * 24 / 8) << id;
        EXPECT_NEAR(strongest, alpha, 2) << id;
    }

    // A name without an icon gives a transparent image and says so.
    UiHarness::takeMessages();
    const QImage unknown = provider.requestImage(QStringLiteral("no.such.symbol"), &size, QSize(16, 16));
    EXPECT_EQ(unknown.size(), QSize(16, 16));
    EXPECT_FALSE(hasInk(unknown));
    const QStringList messages = UiHarness::takeMessages();
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.first().contains(QStringLiteral("no.such.symbol")));
}
