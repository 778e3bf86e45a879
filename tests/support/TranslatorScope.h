#pragma once
// Installs a translator for the scope of a test and restores the identity
// translation however the test ends.

#include "platform/Localized.h"

#include <utility>

class TranslatorScope {
public:
    explicit TranslatorScope(Translator translator) { installTranslator(std::move(translator)); }
    ~TranslatorScope() { installTranslator({}); }
    TranslatorScope(const TranslatorScope&) = delete;
    TranslatorScope& operator=(const TranslatorScope&) = delete;
};
