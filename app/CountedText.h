#pragma once
// Sentences with a count, in the plural form the count needs ("1 item", "2 items"):
// the key holds %Ln, and the translation gives each form.

#include <QString>

#include <cstddef>

QString countedText(const char* key, size_t count);
