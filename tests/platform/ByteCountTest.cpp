#include "platform/ByteCount.h"

#include "support/TranslatorScope.h"

#include <gtest/gtest.h>

TEST(ByteCount, FileStyleUsesDecimalUnitsDropsTrailingZerosAndRoundsUpIntoTheNextUnit) {
    EXPECT_EQ(formatFileSize(1), "1 byte");
    EXPECT_EQ(formatFileSize(2), "2 bytes");
    EXPECT_EQ(formatFileSize(1000), "1 KB");
    EXPECT_EQ(formatFileSize(1024), "1 KB");
    EXPECT_EQ(formatFileSize(1'500), "2 KB");
    EXPECT_EQ(formatFileSize(1'500'000), "1.5 MB");
    EXPECT_EQ(formatFileSize(123'456'789), "123.5 MB");
    EXPECT_EQ(formatFileSize(8'590'000'000), "8.59 GB");
    EXPECT_EQ(formatFileSize(1'234'567'890'123), "1.23 TB");
    EXPECT_EQ(formatFileSize(3'000'000'000'000'000), "3 PB");
    // A value that rounds up to 1000 of one unit is shown as 1 of the next.
    EXPECT_EQ(formatFileSize(999'999), "1 MB");
    EXPECT_EQ(formatFileSize(999'499), "999 KB");
    EXPECT_EQ(formatFileSize(999'960'000), "1 GB");
    EXPECT_EQ(formatFileSize(999'940'000), "999.9 MB");
    EXPECT_EQ(formatFileSize(999'996'000'000), "1 TB");
}

TEST(ByteCount, ByteCountShowsNothingBelowOneByteAsZeroKilobytes) {
    EXPECT_EQ(formatByteCount(0), "0 KB");
    EXPECT_EQ(formatByteCount(-1), "0 KB");
    EXPECT_EQ(formatByteCount(INT64_MIN), "0 KB");
    EXPECT_EQ(formatByteCount(1), "1 byte");
    EXPECT_FALSE(formatByteCount(INT64_MAX).empty());
}

TEST(ByteCount, UnitsAndSentencesAreLocalised) {
    TranslatorScope french([](std::string_view key) -> std::string {
        if (key == "MB")
            return "Mo";
        if (key == "%1 bytes")
            return "%1 octets";
        if (key == "0 KB")
            return "0 ko";
        return std::string(key);
    });
    EXPECT_EQ(formatFileSize(1'500'000), "1.5 Mo");
    EXPECT_EQ(formatFileSize(12), "12 octets");
    EXPECT_EQ(formatByteCount(0), "0 ko");
}
