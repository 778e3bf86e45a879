#pragma once
// What `veltro system-data` prints: a readable table for people or one JSON object.

#include "model/AppModel.h"

#include <QJsonObject>
#include <QString>

namespace SystemDataPrintout {

// The twelve areas in catalogue order with their sizes, then the measured total, the
// snapshot count and the purgeable figure; an area whose action cannot run here says why.
QString text(const AppModel& model);

// {"date" (ISO 8601), "total", "snapshotCount", "purgeable",
//  "entries": [{"id", "title", "size" (bytes; null for the snapshots and for an area not
//               measured), "folders" (expanded), "note" (why nothing is offered, or null),
//               "action": null or {"title", "admin", "available", "unavailableReason"}}]}
QJsonObject json(const AppModel& model);

} // namespace SystemDataPrintout
