#include "systemdata/SystemDataAnalyzer.h"
#include "systemdata/SystemDataCatalog.h"

#include "SystemDataTesting.h"

#include <gtest/gtest.h>

namespace {

const std::string duTail = " 2>/dev/null | awk '{s+=$1} END {print s+0}')\"\n";

} // namespace

TEST(MeasurementScript, CatalogueScriptIsExact) {
    const std::string h = sharedHome().home();
    const std::string expected =
        "#!/bin/sh\n"
        "PROG='/tmp/korvane-sd-1.txt'\n"
        "emit() { printf '%s|%s\\n' \"$1\" \"$2\"; printf '%s|%s\\n' \"$1\" \"$2\" >> \"$PROG\"; }\n"
        "emit tm \"$(tmutil listlocalsnapshots / 2>/dev/null | grep -c com.apple)\"\n"
        "emit 'vm' \"$(du -skx '/private/var/vm' 2>/dev/null | awk '{s+=$1} END {print s+0}')\"\n"
        "emit 'unifiedlogs' \"$(du -skx '/private/var/db/diagnostics' '/private/var/db/uuidtext'" +
        duTail + "emit 'spotlight' \"$(du -skx '/System/Volumes/Data/.Spotlight-V100' '" + h +
        "/Library/Metadata/CoreSpotlight'" + duTail +
        "emit 'simruntimes' \"$(du -skx '/Library/Developer/CoreSimulator/Volumes' "
        "'/Library/Developer/CoreSimulator/Images' '/Library/Developer/CoreSimulator/Cryptex' '" +
        h + "/Library/Developer/CoreSimulator/Devices'" + duTail + "emit 'vmdisks' \"$(du -skx '" + h +
        "/Library/Containers/com.docker.docker/Data/vms' '" + h +
        "/Library/Group Containers/HUAQ24HBR6.dev.orbstack' '" + h + "/.orbstack' '" + h +
        "/Library/Containers/com.utmapp.UTM' '" + h + "/Parallels' '" + h + "/.colima' '" + h + "/.lima'" +
        duTail + "emit 'folders' \"$(du -skx '/private/var/folders'" + duTail +
        "emit 'assets' \"$(du -skx '/System/Library/AssetsV2' '/private/var/MobileAsset'" + duTail +
        "emit 'dbother' \"$(du -skx '/private/var/db'" + duTail +
        "emit 'appsupport' \"$(du -skx '/Library/Application Support' '" + h +
        "/Library/Application Support'" + duTail + "emit 'containers' \"$(du -skx '" + h +
        "/Library/Containers' '" + h + "/Library/Group Containers'" + duTail +
        "emit 'mailmsg' \"$(du -skx '" + h + "/Library/Mail' '" + h + "/Library/Messages'" + duTail +
        "exit 0\n";
    const std::string script =
        SystemDataAnalyzer::measurementScript(SystemDataCatalog::entries(), "/tmp/korvane-sd-1.txt");
    EXPECT_EQ(script, expected);
    EXPECT_EQ(std::count(script.begin(), script.end(), '\n'), 16);
}

TEST(MeasurementScript, QuotesIdsAndPathsAndSkipsEntriesWithoutFolders) {
    std::vector<SystemDataEntry> entries(3);
    entries[0].id = "it's";
    entries[0].paths = {"/data/it's here", "/data/plain"};
    entries[1].id = "empty";
    entries[2].id = "tm";
    entries[2].paths = {"/ignored"};
    EXPECT_EQ(
        SystemDataAnalyzer::measurementScript(entries, "/t/o'k.txt"),
        "#!/bin/sh\n"
        "PROG='/t/o'\\''k.txt'\n"
        "emit() { printf '%s|%s\\n' \"$1\" \"$2\"; printf '%s|%s\\n' \"$1\" \"$2\" >> \"$PROG\"; }\n"
        "emit 'it'\\''s' \"$(du -skx '/data/it'\\''s here' '/data/plain' 2>/dev/null | awk '{s+=$1} END "
        "{print s+0}')\"\n"
        "emit tm \"$(tmutil listlocalsnapshots / 2>/dev/null | grep -c com.apple)\"\n"
        "exit 0\n");
}

TEST(SystemDataParse, AcceptsOnlyWholeNumbersAfterTheFirstBar) {
    using Pairs = std::vector<std::pair<std::string, int64_t>>;
    EXPECT_EQ(SystemDataAnalyzer::parse("x| 12 \ny|+5\nz|12kb\n|5\nw\nv|\nu| \t-7\t\nk|1|2\na b|3\nn|- 4\n"),
              (Pairs{{"x", 12}, {"y", 5}, {"u", -7}, {"a b", 3}}));
    EXPECT_EQ(SystemDataAnalyzer::parse("a|1\rb|2\r\nc|3\u2028d|4\u2029e|5\n\n\r\nf|6"),
              (Pairs{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}, {"e", 5}, {"f", 6}}));
    EXPECT_EQ(
        SystemDataAnalyzer::parse("max|9223372036854775807\nmin|-9223372036854775808\n"
                                  "over|9223372036854775808\nunder|-9223372036854775809\nsign|+-1\nbare|+\n"),
        (Pairs{{"max", INT64_MAX}, {"min", INT64_MIN}}));
    EXPECT_TRUE(SystemDataAnalyzer::parse("").empty());
}
