#include "model/ItemKey.h"

#include <QByteArray>

namespace {

constexpr QChar marker(0x0001);

} // namespace

namespace ItemKey {

bool isValidUtf8(const std::string& raw) {
    // Decoding replaces every invalid sequence, so only valid text survives the trip.
    const QByteArray bytes(raw.data(), static_cast<qsizetype>(raw.size()));
    return QString::fromUtf8(bytes).toUtf8() == bytes;
}

QString fromID(const std::string& id) {
    if (isValidUtf8(id) && (id.empty() || id[0] != '\x01'))
        return QString::fromStdString(id);
    const QByteArray bytes(id.data(), static_cast<qsizetype>(id.size()));
    return QString(marker) + QString::fromLatin1(bytes.toBase64());
}

std::string toID(const QString& key) {
    if (key.startsWith(marker)) {
        const QByteArray bytes = QByteArray::fromBase64(key.mid(1).toLatin1());
        return bytes.toStdString();
    }
    return key.toStdString();
}

QString displayText(const std::string& raw) {
    return QString::fromUtf8(raw.data(), static_cast<qsizetype>(raw.size()));
}

} // namespace ItemKey
