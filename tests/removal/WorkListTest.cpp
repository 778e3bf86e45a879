#include "removal/WorkList.h"

#include "removal/HelperMeasurement.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

namespace {

using Kind = WorkList::Step::Kind;

std::string fields(std::initializer_list<std::string> values) {
    std::string out;
    for (const std::string& value : values)
        out += value + '\0';
    return out;
}

} // namespace

TEST(WorkList, EveryRequestComesBackByteForByte) {
    // Raw bytes that a shell, a line reader or a text decoder would change.
    const std::string odd = "/h/nl\n\xff 'q' $(x) end";
    const WorkList::Batch batch{
        1000,
        100,
        "/h",
        "/tmp",
        "/h/.local/share/Trash",
        -3600,
        {{Kind::move, "i0", odd}, {Kind::remove, "i3", "end"}, {Kind::command, "i7", "a\nb"}}};
    EXPECT_EQ(WorkList::decodeBatch(WorkList::encode(batch)), batch);

    const std::vector<WorkList::MeasuredEntry> entries = {
        {"vm", {odd, "/var/swap"}, ""}, {"tm", {}, "snapper list | wc -l"}, {"none", {}, ""}};
    EXPECT_EQ(WorkList::decodeMeasurement(WorkList::encode(entries)), entries);
    EXPECT_EQ(WorkList::decodeRun(WorkList::encodeRun("#!/bin/sh\n" + odd)), "#!/bin/sh\n" + odd);
}

TEST(WorkList, AnythingMalformedOrATimeADateCannotHoldGivesNothing) {
    const auto headAt = [](const std::string& time) {
        return fields({"user", "1000", "100", "home", "/h", "tmp", "/t", "trash", "/h/T", "time", time});
    };
    const std::string head = headAt("0");
    const std::vector<std::pair<const char*, std::string>> batches = {
        {"no end", head + fields({"move", "i0", "/h/a"})},
        {"bytes after the end", head + fields({"end"}) + "x"},
        {"last field without its NUL", head + "end"},
        {"unknown step", head + fields({"copy", "i0", "/h/a", "end"})},
        {"key with a bar", head + fields({"move", "i|0", "/h/a", "end"})},
        {"key with a newline", head + fields({"move", "i0\n", "/h/a", "end"})},
        {"empty key", head + fields({"move", "", "/h/a", "end"})},
        {"empty path", head + fields({"move", "i0", "", "end"})},
        {"step cut short", head + fields({"move", "i0", "end"})},
        {"uid not a number", fields({"user", "10x", "100", "home", "/h", "end"})},
        {"fields out of order", fields({"home", "/h", "user", "1", "1", "end"})},
        {"nothing", ""},
        {"a time past what a date holds", headAt("9223372037") + fields({"end"})},
        {"the largest time", headAt("9223372036854775807") + fields({"end"})},
        {"the smallest time", headAt("-9223372036854775808") + fields({"end"})},
    };
    for (const auto& [why, bytes] : batches)
        EXPECT_FALSE(WorkList::decodeBatch(bytes).has_value()) << why;
    EXPECT_TRUE(WorkList::decodeBatch(headAt("9223372036") + fields({"end"})).has_value());

    EXPECT_FALSE(WorkList::decodeMeasurement(fields({"du", "vm", "2", "/a", "end"})).has_value());
    EXPECT_FALSE(WorkList::decodeMeasurement(fields({"du", "vm", "99999999", "end"})).has_value());
    EXPECT_FALSE(WorkList::decodeMeasurement(fields({"count", "tm", "", "end"})).has_value());
    EXPECT_FALSE(WorkList::decodeRun(fields({"run", "true", "end", "end"})).has_value());
    EXPECT_FALSE(WorkList::decodeRun(fields({"run", "true"})).has_value());

    // The length in front tells when a list has come whole, whatever its bytes.
    const std::string list = head + fields({"move", "i0", "end", "end"});
    const std::string framed = WorkList::framed(list);
    bool malformed = true;
    EXPECT_FALSE(WorkList::unframed(framed.substr(0, framed.size() - 1), malformed).has_value());
    EXPECT_FALSE(malformed);
    EXPECT_EQ(WorkList::unframed(framed + "more", malformed), list);
    for (const std::string& bad : {"x\0"s, "\0"s, "99999999999999999999\0"s, std::string(30, '1')}) {
        EXPECT_FALSE(WorkList::unframed(bad, malformed).has_value());
        EXPECT_TRUE(malformed) << bad;
    }
}

TEST(HelperMeasurement, SumsLeadingNumbersAsAwkDoes) {
    EXPECT_EQ(HelperMeasurement::sumOfFirstFields("12\t/a\n30\t/b\n"), 42);
    EXPECT_EQ(HelperMeasurement::sumOfFirstFields("  7 /a\r\n5k\t/b\nx\t/c\n\n"), 12);
    EXPECT_EQ(HelperMeasurement::sumOfFirstFields(""), 0);
    EXPECT_EQ(HelperMeasurement::sumOfFirstFields("9007199254740993\t/huge\n"), 9007199254740993);
}
