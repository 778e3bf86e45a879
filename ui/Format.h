#pragma once
// Texts of numbers, sizes and dates for the views, in the user's locale.

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

class Format : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    explicit Format(QObject* parent = nullptr);

    // The shared size text: "0 KB" below 1 byte, otherwise the file-style count.
    Q_INVOKABLE static QString byteCount(qint64 bytes);
    // The file-style count without the "0 KB" rule ("0 bytes").
    Q_INVOKABLE static QString fileSize(qint64 bytes);
    // A fraction (0.42) as a whole percent in the locale's form ("42%").
    Q_INVOKABLE static QString percent(double fraction);
    Q_INVOKABLE static QString integer(qint64 value);
    // The date relative to now in the largest whole unit, spelled out with named
    // forms where the locale has them ("now", "yesterday", "3 weeks ago",
    // "in 2 days"); "—" for an invalid date.
    Q_INVOKABLE static QString relativeDate(const QDateTime& date);
    static QString relativeDate(const QDateTime& date, const QDateTime& now);
};
