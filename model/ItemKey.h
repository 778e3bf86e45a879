#pragma once
// Item ids are raw file-system bytes, which need not be valid UTF-8. The views get a
// text key per item that converts back to the exact bytes: the id itself when it is
// valid UTF-8, otherwise U+0001 followed by the bytes in base64 (no real id starts
// with U+0001: paths start with "/", command ids with "cmd.").

#include <QString>
#include <string>

namespace ItemKey {

QString fromID(const std::string& id);
std::string toID(const QString& key);

// True when the bytes are well-formed UTF-8.
bool isValidUtf8(const std::string& raw);

// Text for showing a raw path or name: invalid bytes become U+FFFD.
QString displayText(const std::string& raw);

} // namespace ItemKey
