#pragma once
// Every user-visible English sentence is its own localisation key. The engine asks
// for texts through these functions; by default the key comes back unchanged, and
// the application installs a translator that routes to its translation catalogue.

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

using Translator = std::function<std::string(std::string_view key)>;

// Installs the translator for the whole process. Call before any worker thread
// starts; an empty function restores the identity translation.
void installTranslator(Translator translator);

std::string localized(std::string_view key);

// Translates `key` whole, then replaces %1, %2, ... (up to %9) by the given values,
// so a sentence with values stays one key: localizedFormat("Scanning %1…", {title}).
std::string localizedFormat(std::string_view key, std::initializer_list<std::string_view> values);
