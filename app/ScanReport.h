#pragma once
// What `veltro scan` prints: a readable report for people or one JSON object.

#include "model/AppModel.h"
#include "scanning/SearchedPlaces.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <cstdio>

namespace ScanReport {

// Every category in display order with its items in the model's order, written to
// `out` by `veltro scan --json` as one line:
//   {"disk": {"total", "available"}, "hasFullDiskAccess",
//    "categories": [{"id", "group", "title", "risk", "selectedByDefault", "totalSize",
//                    "items": [item, ...], "searched": [folder, ...]}, ...]}
// Sizes are bytes allocated on disk; items run largest first, unknown sizes last.
// "searched" lists the existing folders the category looked in (`searched`).
// The object is written piece by piece (keys in QJsonDocument's order), so a scan
// with many items never holds the whole document, or a copy of it, in memory.
void writeJson(const AppModel& model, const SearchedPlaces::PerCategory& searched, FILE* out);

// One item: {"id" (the exact id, or for one that is not UTF-8 U+0001 and the base64 of
// its bytes, which `clean --item` accepts too), "name", "path" (null for a command), "size" (null when
// unknown), "modified" (ISO 8601, or null), "method" ("trash", "permanent", "adminTrash", "command"),
// "command" (null unless a command), "admin", "note" (or null)}, and "pathBytes" (base64 of the exact path)
// only when the path is not valid UTF-8, as texts then hold U+FFFD in place of the bytes they cannot carry.
QJsonObject itemJson(const ScanItem& item);

// Groups with their categories (title, size, item count), then the largest items,
// then how many distinct places were searched.
QString text(const AppModel& model, const SearchedPlaces::PerCategory& searched, int largestCount = 10);

// A file name or path as the text reports print it: escaped so that it stays on its
// line and sends the terminal nothing.
QString shownText(const std::string& raw);

// {"path"} and, when `path` is not UTF-8, {"pathBytes"}: base64 of its exact bytes.
void insertPath(QJsonObject& object, const std::string& path);

} // namespace ScanReport
