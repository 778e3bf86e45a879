#include "ui/Format.h"

#include "platform/ByteCount.h"

#include <QLocale>

#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/reldatefmt.h>
#include <unicode/unistr.h>

#include <memory>

namespace {

const QString unknown = QStringLiteral("\u2014");

icu::Locale icuLocale() {
    // Qt calls the untranslated locale "C", for which ICU has no plural rules ("1 hours
    // ago"); its POSIX English has them.
    const QString name = QLocale().name();
    return icu::Locale(name == QLatin1String("C") ? "en_US_POSIX" : name.toLatin1().constData());
}

QString fromIcu(const icu::UnicodeString& text) {
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

struct Offset {
    double value = 0;
    URelativeDateTimeUnit unit = UDAT_REL_UNIT_SECOND;
};

// Calendar distance from `from` to `to` (from <= to) in its largest nonzero unit, in
// local time: whole years, then months, weeks, days, hours, minutes; less than a
// minute is no distance at all.
Offset largestUnit(const QDateTime& from, const QDateTime& to) {
    int years = to.date().year() - from.date().year();
    if (from.addYears(years) > to)
        --years;
    const QDateTime afterYears = from.addYears(years);
    int months =
        (to.date().year() - afterYears.date().year()) * 12 + to.date().month() - afterYears.date().month();
    if (afterYears.addMonths(months) > to)
        --months;
    const QDateTime afterMonths = afterYears.addMonths(months);
    qint64 days = afterMonths.date().daysTo(to.date());
    if (afterMonths.addDays(days) > to)
        --days;
    const qint64 seconds = afterMonths.addDays(days).secsTo(to);
    if (years > 0)
        return {double(years), UDAT_REL_UNIT_YEAR};
    if (months > 0)
        return {double(months), UDAT_REL_UNIT_MONTH};
    if (days >= 7)
        return {double(days / 7), UDAT_REL_UNIT_WEEK};
    if (days > 0)
        return {double(days), UDAT_REL_UNIT_DAY};
    if (seconds >= 3600)
        return {double(seconds / 3600), UDAT_REL_UNIT_HOUR};
    if (seconds >= 60)
        return {double(seconds / 60), UDAT_REL_UNIT_MINUTE};
    // Under a minute reads as "now": a count of seconds would tick on every refresh,
    // and the numeric style gets the plural of a single second wrong.
    return {0, UDAT_REL_UNIT_SECOND};
}

// Formatters are costly to build and the views ask for many texts: keep one per
// locale. Interface thread only.
const icu::RelativeDateTimeFormatter* relativeFormatter() {
    static std::unique_ptr<icu::RelativeDateTimeFormatter> formatter;
    static QString localeName;
    if (!formatter || localeName != QLocale().name()) {
        UErrorCode status = U_ZERO_ERROR;
        formatter = std::make_unique<icu::RelativeDateTimeFormatter>(icuLocale(), nullptr, UDAT_STYLE_LONG,
                                                                     UDISPCTX_CAPITALIZATION_NONE, status);
        if (U_FAILURE(status))
            formatter.reset();
        localeName = QLocale().name();
    }
    return formatter.get();
}

icu::NumberFormat* percentFormatter() {
    static std::unique_ptr<icu::NumberFormat> formatter;
    static QString localeName;
    if (!formatter || localeName != QLocale().name()) {
        UErrorCode status = U_ZERO_ERROR;
        formatter.reset(icu::NumberFormat::createPercentInstance(icuLocale(), status));
        if (U_FAILURE(status))
            formatter.reset();
        if (formatter) {
            formatter->setMaximumFractionDigits(0);
            formatter->setRoundingMode(icu::NumberFormat::kRoundHalfUp);
        }
        localeName = QLocale().name();
    }
    return formatter.get();
}

} // namespace

Format::Format(QObject* parent) : QObject(parent) {}

QString Format::byteCount(qint64 bytes) {
    return QString::fromStdString(formatByteCount(bytes));
}

QString Format::fileSize(qint64 bytes) {
    return QString::fromStdString(formatFileSize(bytes));
}

QString Format::percent(double fraction) {
    icu::NumberFormat* format = percentFormatter();
    if (!format)
        return QLocale().toString(qRound(fraction * 100)) + QLatin1Char('%');
    icu::UnicodeString text;
    format->format(fraction, text);
    return fromIcu(text);
}

QString Format::integer(qint64 value) {
    return QLocale().toString(value);
}

QString Format::relativeDate(const QDateTime& date) {
    return relativeDate(date, QDateTime::currentDateTime());
}

QString Format::relativeDate(const QDateTime& date, const QDateTime& now) {
    if (!date.isValid() || !now.isValid())
        return unknown;
    const QDateTime when = date.toLocalTime();
    const QDateTime reference = now.toLocalTime();
    const bool future = when > reference;
    Offset offset = future ? largestUnit(reference, when) : largestUnit(when, reference);
    if (!future)
        offset.value = -offset.value;

    const icu::RelativeDateTimeFormatter* formatter = relativeFormatter();
    if (!formatter)
        return unknown;
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString text;
    formatter->format(offset.value, offset.unit, text, status);
    if (U_FAILURE(status))
        return unknown;
    return fromIcu(text);
}
