#pragma once
// The product's four web addresses, built once from constant text.

#include <QString>
#include <QUrl>

namespace SupportLinks {

inline constexpr char websiteText[] = "https://veltro.app";

const QUrl& website();
// The donation section of the website.
const QUrl& coffee();
const QUrl& terms();
const QUrl& privacy();

// "veltro.app", as named in the footer's help text.
QString websiteHost();

// Linux has no settings pane for Full Disk Access; the website explains it instead.
const QUrl& fullDiskAccessHelp();

} // namespace SupportLinks
