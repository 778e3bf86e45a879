#include "catalogue/RemovalMethod.h"

std::string_view RemovalMethod::name() const {
    switch (kind) {
    case Kind::command:
        return "command";
    case Kind::trash:
        return "trash";
    case Kind::permanent:
        return "permanent";
    case Kind::adminTrash:
        return "adminTrash";
    }
    return {};
}
