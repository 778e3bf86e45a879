#include "app/CountedText.h"

#include <QCoreApplication>

QString countedText(const char* key, size_t count) {
    return QCoreApplication::translate("Veltro", key, nullptr, static_cast<int>(count));
}
