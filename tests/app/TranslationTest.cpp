// The Linux English translation against the code it translates: every sentence it
// holds is still one the code asks for, and it answers whatever the asking context.

#include "app/LinuxWording.h"
#include "platform/Localized.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

namespace {

QString fileText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The string literals of C++ or QML source, escapes decoded (those a sentence uses are
// JSON's too); a C++ sentence wrapped over lines as adjacent literals is one.
QSet<QString> literalsOf(QString code) {
    code.replace(QRegularExpression(QStringLiteral("\"\\s*\\n\\s*\"")), QString());
    static const QRegularExpression literal(QStringLiteral("\"(?:[^\"\\\\\\n]|\\\\.)*\""));
    QSet<QString> literals;
    for (const QRegularExpressionMatch& match : literal.globalMatch(code))
        literals.insert(
            QJsonDocument::fromJson("[" + match.captured().toUtf8() + "]").array().at(0).toString());
    return literals;
}

} // namespace

TEST(Translation, EveryTranslatedSentenceIsStillInTheCode) {
    QSet<QString> literals;
    for (const char* folder :
         {"app", "catalogue", "model", "platform", "removal", "scanning", "systemdata", "ui"}) {
        QDirIterator files(QStringLiteral(VELTRO_SOURCE_DIR "/") + folder, {"*.cpp", "*.h", "*.qml"},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext())
            literals.unite(literalsOf(fileText(files.next())));
    }
    QXmlStreamReader ts(fileText(QStringLiteral(VELTRO_SOURCE_DIR "/app/translations/linux_en.ts")));
    QStringList stale;
    int sources = 0;
    while (!ts.atEnd())
        if (ts.readNext() == QXmlStreamReader::StartElement && ts.name() == QLatin1String("source")) {
            const QString source = ts.readElementText();
            ++sources;
            if (!literals.contains(source))
                stale << source;
        }
    ASSERT_FALSE(ts.hasError()) << ts.errorString().toStdString();
    EXPECT_GT(sources, 50);
    EXPECT_EQ(stale.join('\n').toStdString(), "");
}

TEST(Translation, AnswersInAnyContextAndCountsInTheSingularForOne) {
    int argc = 1;
    char name[] = "veltro";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    ASSERT_TRUE(LinuxWording::install(app));
    EXPECT_EQ(localized("Show in Finder"), "Show in Files");
    EXPECT_EQ(QCoreApplication::translate("SystemEntryRow", "Show in Finder"), "Show in Files");
    EXPECT_EQ(localized("Rescan"), "Rescan");
    for (const char* context : {"Veltro", "FloatingActionBar"}) {
        EXPECT_EQ(QCoreApplication::translate(context, "%Ln items selected", nullptr, 1), "1 item selected");
        EXPECT_EQ(QCoreApplication::translate(context, "%Ln items selected", nullptr, 1200),
                  "1,200 items selected");
    }
    installTranslator({});
}
