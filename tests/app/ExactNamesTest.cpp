// Names no text can carry: a byte that is not UTF-8, a look-alike holding U+FFFD
// where that byte was, a name built to forge report lines and drive the terminal, and
// the quotes, backslashes and control characters JSON must escape.

#include "support/BinaryRun.h"
#include "support/FakeHome.h"

#include "platform/Paths.h"
#include "support/PathQueries.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QStringDecoder>

#include <map>
#include <set>

TEST(HeadlessNames, ItemIsChosenByItsBytesAndReportsShowNamesEscaped) {
    FakeHome home;
    const std::string invalid = home.makeFileOfSize("Library/Caches/x\xff", 100'000);
    const std::string lookAlike = home.makeFileOfSize("Library/Caches/x\xef\xbf\xbd", 90'000);
    const std::string forger = home.makeFileOfSize("Library/Caches/evil\n  9.9 GB  forged\x1b[2J", 80'000);
    std::vector<std::string> paths{invalid, lookAlike, forger};
    for (const char* name : {"q\"uote", "back\\slash", "ctl\x01\x1f"})
        paths.push_back(home.makeFileOfSize(std::string("Library/Caches/") + name, 10'000));

    const BinaryRun text = BinaryRun::of({"scan"});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out.find('\x1b'), std::string::npos);
    EXPECT_NE(text.out.find("evil\\n  9.9 GB  forged\\e[2J  ("), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("Caches/x\\xff  ("), std::string::npos) << text.out;

    const BinaryRun scan = BinaryRun::of({"scan", "--json"});
    ASSERT_EQ(scan.status, 0) << scan.err;
    EXPECT_EQ(std::count(scan.out.begin(), scan.out.end(), '\n'), 1);
    QStringDecoder utf8(QStringDecoder::Utf8);
    (void)utf8.decode(QByteArrayView(scan.out.data(), static_cast<qsizetype>(scan.out.size())));
    EXPECT_FALSE(utf8.hasError()) << "the output is not UTF-8";
    std::set<QString> ids;
    std::map<std::string, QJsonObject> byPath; // by the exact bytes of each item's path
    for (const QJsonValue& category : scan.json()["categories"].toArray())
        for (const QJsonValue& item : category["items"].toArray()) {
            EXPECT_TRUE(ids.insert(item["id"].toString()).second) << "two items share an id";
            const QJsonValue bytes = item["pathBytes"];
            byPath[bytes.isUndefined() ? item["path"].toString().toStdString()
                                       : QByteArray::fromBase64(bytes.toString().toLatin1()).toStdString()] =
                item.toObject();
        }
    // Only a name that is not UTF-8 spells its bytes out.
    for (const std::string& path : paths) {
        const auto found = byPath.find(Paths::canonicalPath(path));
        ASSERT_NE(found, byPath.end()) << path;
        EXPECT_EQ(found->second.contains("pathBytes"), path == invalid) << path;
    }

    const BinaryRun clean = BinaryRun::of({"clean", "--item", invalid, "--yes", "--json"});
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
