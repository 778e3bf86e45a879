#pragma once
// Cache folders that Chromium-based browsers and Electron applications keep in each
// profile, wherever the platform puts the profiles.

#include <array>
#include <string_view>

namespace CacheFolderNames {

inline constexpr std::array<std::string_view, 10> chromium{"Cache",
                                                           "Code Cache",
                                                           "GPUCache",
                                                           "Service Worker/CacheStorage",
                                                           "Service Worker/ScriptCache",
                                                           "DawnCache",
                                                           "DawnGraphiteCache",
                                                           "DawnWebGPUCache",
                                                           "GrShaderCache",
                                                           "ShaderCache"};

// Kept by Electron applications besides the Chromium ones.
inline constexpr std::array<std::string_view, 3> electronOnly{"CachedData", "CachedExtensionVSIXs",
                                                              "Crashpad/completed"};

// Shared by all profiles of a browser, next to the profile folders.
inline constexpr std::array<std::string_view, 3> browserShared{"ShaderCache", "GrShaderCache",
                                                               "component_crx_cache"};

} // namespace CacheFolderNames
