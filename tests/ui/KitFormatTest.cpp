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
    const std::pair<QString, QString> cases[] = {
        {Format::byteCount(0), "0 KB"},       {Format::byteCount(-5), "0 KB"},
        {Format::byteCount(1), "1 byte"},     {Format::byteCount(8590000000), "8.59 GB"},
        {Format::fileSize(999), "999 bytes"}, {Format::percent(0.424), "42%"},
        {Format::percent(0.425), "43%"},      {Format::integer(1234567), "1,234,567"},
    };
    for (const auto& [shown, expected] : cases)
        EXPECT_EQ(shown, expected);
    LocaleScope inGerman(german);
    EXPECT_EQ(Format::percent(0.42), QStringLiteral("42\u00a0%"));
    EXPECT_EQ(Format::integer(1234567), "1.234.567");
}

TEST(KitFormat, RelativeDatesInTheLargestWholeUnit) {
    const QDateTime noon(QDate(2024, 5, 15), QTime(12, 0));
    struct Case {
        QLocale locale;
        QDateTime when;
        const char* expected;
    };
    const Case cases[] = {
        {english, noon.addDays(2), "in 2 days"},
        {english, noon.addDays(1), "tomorrow"},
        {english, noon.addSecs(30), "now"},
        // Under a minute is "now".
        {english, noon.addSecs(-59), "now"},
        {english, noon.addSecs(-60), "1 minute ago"},
        {english, noon.addSecs(-3 * 3600 - 59 * 60), "3 hours ago"},
        {english, noon.addDays(-1), "yesterday"},
        {english, noon.addDays(-6), "6 days ago"},
        {english, noon.addDays(-7), "last week"},
        {english, noon.addDays(-13), "last week"},
        {english, noon.addDays(-21), "3 weeks ago"},
        {english, noon.addMonths(-11).addDays(-20), "11 months ago"},
        {english, noon.addYears(-1), "last year"},
        {english, noon.addYears(-5).addDays(3), "4 years ago"},
        // Whole units by the calendar: a day short of a month is still weeks.
        {english, QDateTime(QDate(2024, 4, 16), QTime(12, 0)), "4 weeks ago"},
        {english, QDateTime(QDate(2024, 4, 15), QTime(12, 0)), "last month"},
        // Without a configured language (LANG unset) the singular still reads right.
        {QLocale::c(), noon.addSecs(-60), "1 minute ago"},
        {QLocale::c(), noon.addSecs(-3600), "1 hour ago"},
        {german, noon.addDays(-21), "vor 3 Wochen"},
    };
    for (const Case& each : cases) {
        LocaleScope scope(each.locale);
        EXPECT_EQ(Format::relativeDate(each.when, noon), QString::fromUtf8(each.expected))
            << each.when.toString(Qt::ISODate).toStdString() << " in " << each.locale.name().toStdString();
    }
    // Against the real clock, as the views call it, and no date at all.
    LocaleScope scope(english);
    EXPECT_EQ(Format::relativeDate(QDateTime::currentDateTime().addDays(-1)), "yesterday");
    EXPECT_EQ(Format::relativeDate(QDateTime()), QStringLiteral("\u2014"));
}
