#pragma once
// What `veltro clean` prints: the confirmation summary and the outcome.

#include "model/AppModel.h"
#include "model/CleanPlan.h"

#include <QJsonObject>
#include <QString>

namespace CleanReport {

// The figures the confirmation shows: title, removal rows and warnings.
QString summary(const AppModel& model);

// Count, bytes moved and deleted, space gained, each failure with reason and path.
QString result(const AppModel& model);

QJsonObject summaryJson(const AppModel& model);
// {"succeeded", "failures" (items with a "reason"), "trashed" ([{"path", "pathBytes"
// when not UTF-8}]: where the moved items now lie), byte counts, "purgeMessage"}.
QJsonObject resultJson(const AppModel& model);

} // namespace CleanReport
