#include "catalogue/Risk.h"

#include "platform/Localized.h"

namespace Risks {

std::string label(Risk risk) {
    switch (risk) {
    case Risk::safe:
        return localized("Safe");
    case Risk::caution:
        return localized("Caution");
    case Risk::review:
        return localized("Review");
    }
    return {};
}

std::string_view name(Risk risk) {
    switch (risk) {
    case Risk::safe:
        return "safe";
    case Risk::caution:
        return "caution";
    case Risk::review:
        return "review";
    }
    return {};
}

} // namespace Risks
