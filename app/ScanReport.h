#pragma once
// What `veltro scan` prints: a readable report for people or one JSON object.

#include "model/AppModel.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace ScanReport {

// Every category in display order with its items in the model's order; printed
// by `veltro scan --json` as one line:
//   {"disk": {"total", "available"}, "hasFullDiskAccess",
//    "categories": [{"id", "group", "title", "risk", "selectedByDefault", "totalSize",
//                    "items": [item, ...]}, ...]}
// Sizes are bytes allocated on disk; items run largest first, unknown sizes last.
QJsonObject json(const AppModel& model);

// One item: {"id", "name", "path" (null for a command), "size" (null when unknown),
// "modified" (ISO 8601, or null), "method" ("trash", "permanent", "adminTrash",
// "command"), "command" (null unless a command), "admin", "note" (or null)}, and
// "pathBytes" (base64 of the exact path) only when the path is not valid UTF-8, as
// texts then hold U+FFFD in place of the bytes they cannot carry.
QJsonObject itemJson(const ScanItem& item);

// Groups with their categories (title, size, item count), then the largest items.
QString text(const AppModel& model, int largestCount = 10);

} // namespace ScanReport
