// Sizes, percentages, counts and relative dates as the views show them.

#include "UiHarness.h"

#include "ui/Format.h"

#include <QDateTime>
#include <QLocale>

namespace {

class LocaleScope {
public:
    explicit LocaleScope(const QLocale& locale) : previous_(QLocale()) { QLocale::setDefault(locale); }
    ~LocaleScope() { QLocale::setDefault(previous_); }

private:
    QLocale previous_;
};

const QLocale english(QLocale::English, QLocale::UnitedStates);
const QLocale german(QLocale::German, QLocale::Germany);

} // namespace

TEST(KitFormat, SizesCountsAndPercentages) {
    LocaleScope scope(english);
    EXPECT_EQ(Format::byteCount(0), "0 KB");
    EXPECT_EQ(Format::byteCount(-5), "0 KB");
    EXPECT_EQ(Format::byteCount(1), "1 byte");
    EXPECT_EQ(Format::byteCount(1500000), "1.5 MB");
    EXPECT_EQ(Format::byteCount(8590000000), "8.59 GB");
    EXPECT_EQ(Format::fileSize(999), "999 bytes");

    EXPECT_EQ(Format::percent(0.07), "7%");
    EXPECT_EQ(Format::percent(1.0), "100%");
    EXPECT_EQ(Format::percent(0.0), "0%");
    EXPECT_EQ(Format::percent(0.424), "42%");
    EXPECT_EQ(Format::percent(0.425), "43%");
    EXPECT_EQ(Format::integer(1234567), "1,234,567");

    LocaleScope inGerman(german);
    EXPECT_EQ(Format::percent(0.42), QStringLiteral("42\u00a0%"));
    EXPECT_EQ(Format::integer(1234567), "1.234.567");
}

TEST(KitFormat, RelativeDatesInTheLargestWholeUnit) {
    LocaleScope scope(english);
    const QDateTime now = QDateTime::currentDateTime();
    // Against the real clock, as the views call it.
    EXPECT_EQ(Format::relativeDate(now), "now");
    EXPECT_EQ(Format::relativeDate(now.addDays(-1)), "yesterday");
    EXPECT_EQ(Format::relativeDate(now.addDays(-21)), "3 weeks ago");
    EXPECT_EQ(Format::relativeDate(QDateTime()), QStringLiteral("\u2014"));

    // Against a fixed moment: future dates and the unit boundaries.
    const QDateTime noon(QDate(2024, 5, 15), QTime(12, 0));
    EXPECT_EQ(Format::relativeDate(noon.addDays(2), noon), "in 2 days");
    EXPECT_EQ(Format::relativeDate(noon.addDays(1), noon), "tomorrow");
    EXPECT_EQ(Format::relativeDate(noon.addSecs(-1), noon), "now");
    EXPECT_EQ(Format::relativeDate(noon.addSecs(-59), noon), "now");
    EXPECT_EQ(Format::relativeDate(noon.addSecs(30), noon), "now");
    EXPECT_EQ(Format::relativeDate(noon.addSecs(-60), noon), "1 minute ago");
    EXPECT_EQ(Format::relativeDate(noon.addSecs(-3 * 3600 - 59 * 60), noon), "3 hours ago");
    EXPECT_EQ(Format::relativeDate(noon.addSecs(-23 * 3600), noon), "23 hours ago");
    EXPECT_EQ(Format::relativeDate(noon.addDays(-6), noon), "6 days ago");
    EXPECT_EQ(Format::relativeDate(noon.addDays(-7), noon), "last week");
    EXPECT_EQ(Format::relativeDate(noon.addDays(-13), noon), "last week");
    EXPECT_EQ(Format::relativeDate(noon.addMonths(-2), noon), "2 months ago");
    EXPECT_EQ(Format::relativeDate(noon.addMonths(-11).addDays(-20), noon), "11 months ago");
    EXPECT_EQ(Format::relativeDate(noon.addYears(-1), noon), "last year");
    EXPECT_EQ(Format::relativeDate(noon.addYears(-5).addDays(3), noon), "4 years ago");
    // Whole units by the calendar: a day short of a month is still weeks.
    EXPECT_EQ(Format::relativeDate(QDateTime(QDate(2024, 1, 15), QTime(9, 0)),
                                   QDateTime(QDate(2024, 2, 14), QTime(9, 0))),
              "4 weeks ago");
    EXPECT_EQ(Format::relativeDate(QDateTime(QDate(2024, 1, 15), QTime(9, 0)),
                                   QDateTime(QDate(2024, 2, 15), QTime(9, 0))),
              "last month");

    {
        // Without a configured language (LANG unset) the singular still reads right.
        LocaleScope untranslated(QLocale::c());
        EXPECT_EQ(Format::relativeDate(noon.addSecs(-60), noon), "1 minute ago");
        EXPECT_EQ(Format::relativeDate(noon.addSecs(-3600), noon), "1 hour ago");
        EXPECT_EQ(Format::relativeDate(noon.addSecs(-5), noon), "now");
    }
    LocaleScope inGerman(german);
    EXPECT_EQ(Format::relativeDate(noon.addDays(-1), noon), "gestern");
    EXPECT_EQ(Format::relativeDate(noon.addDays(-21), noon), "vor 3 Wochen");
}

class KitFormatQml : public QmlTest {};

TEST_F(KitFormatQml, ReachableFromQml) {
    LocaleScope scope(english);
    ASSERT_NE(
        loadInWindow("Text { objectName: \"size\"; text: Format.byteCount(0) + \"|\" + Format.percent(0.5) "
                     "+ \"|\" + Format.relativeDate(new Date(Date.now() - 86400 * 1000)) }"),
        nullptr);
    QObject* size = find(QStringLiteral("size"));
    ASSERT_NE(size, nullptr);
    EXPECT_EQ(size->property("text").toString(), "0 KB|50%|yesterday");
}
