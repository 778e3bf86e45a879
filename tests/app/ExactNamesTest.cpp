// Names no text can carry: a byte that is not UTF-8, a look-alike holding U+FFFD
// where that byte was, and a name built to forge report lines and drive the terminal.

#include "CommandRun.h"

#include "support/PathQueries.h"

#include <gtest/gtest.h>

#include <QJsonArray>

#include <set>

TEST(HeadlessNames, ItemIsChosenByItsBytesAndReportsShowNamesEscaped) {
    FakeHome home;
    const std::string invalid = home.makeFileOfSize("Library/Caches/x\xff", 100'000);
    const std::string lookAlike = home.makeFileOfSize("Library/Caches/x\xef\xbf\xbd", 90'000);
    const std::string forger = home.makeFileOfSize("Library/Caches/evil\n  9.9 GB  forged\x1b[2J", 80'000);

    const CommandRun text = CommandRun::of(home, {"scan"});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out.find('\x1b'), std::string::npos);
    EXPECT_NE(text.out.find("evil\\n  9.9 GB  forged\\e[2J  ("), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("Caches/x\\xff  ("), std::string::npos) << text.out;

    const CommandRun scan = CommandRun::of(home, {"scan", "--json"});
    ASSERT_EQ(scan.status, 0) << scan.err;
    std::set<QString> ids;
    size_t count = 0;
    for (const QJsonValue& category : scan.json()["categories"].toArray())
        for (const QJsonValue& item : category["items"].toArray()) {
            ids.insert(item["id"].toString());
            ++count;
        }
    EXPECT_EQ(ids.size(), count) << "two items share an id";

    const CommandRun clean = CommandRun::of(home, {"clean", "--item", invalid, "--yes", "--json"});
    ASSERT_EQ(clean.status, 0) << clean.err;
    EXPECT_FALSE(exists(invalid));
    EXPECT_TRUE(exists(lookAlike));
    EXPECT_TRUE(exists(forger));
    const QJsonObject result = clean.json()["result"].toObject();
    ASSERT_EQ(result["succeeded"].toArray().size(), 1);
    EXPECT_TRUE(result["succeeded"][0]["id"].toString().startsWith(QChar(0x0001)));
    ASSERT_EQ(result["trashed"].toArray().size(), 1);
    const std::string trashed =
        QByteArray::fromBase64(result["trashed"][0]["pathBytes"].toString().toLatin1()).toStdString();
    EXPECT_TRUE(trashed.ends_with("/x\xff") && exists(trashed)) << trashed;
}
