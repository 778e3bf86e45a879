#pragma once
// What `veltro scan` prints: a readable report for people or one JSON object.

#include "model/AppModel.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace ScanReport {

// Every category in display order with its items in the model's order.
QJsonObject json(const AppModel& model);
QJsonObject itemJson(const ScanItem& item);

// Groups with their categories (title, size, item count), then the largest items.
QString text(const AppModel& model, int largestCount = 10);

} // namespace ScanReport
