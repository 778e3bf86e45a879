#include "removal/CleanResult.h"

#include "platform/Uuid.h"

void CleanResult::recordFailure(const ScanItem& item, std::string reason) {
    failures.push_back(CleanFailure{makeUuid(), item, std::move(reason)});
}
