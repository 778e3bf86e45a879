#include "ui/SupportLinks.h"

namespace SupportLinks {
namespace {

// A text that does not parse is a programming error, caught on first use.
QUrl parsed(const QString& text) {
    QUrl url(text, QUrl::StrictMode);
    Q_ASSERT_X(url.isValid() && !url.host().isEmpty(), "SupportLinks", qPrintable(text));
    return url;
}

QString underWebsite(const char* suffix) {
    return QLatin1String(websiteText) + QLatin1String(suffix);
}

} // namespace

const QUrl& website() {
    static const QUrl url = parsed(QLatin1String(websiteText));
    return url;
}

const QUrl& coffee() {
    static const QUrl url = parsed(underWebsite("/#coffee"));
    return url;
}

const QUrl& terms() {
    static const QUrl url = parsed(underWebsite("/terms.html"));
    return url;
}

const QUrl& privacy() {
    static const QUrl url = parsed(underWebsite("/privacy.html"));
    return url;
}

const QUrl& fullDiskAccessHelp() {
    static const QUrl url = parsed(underWebsite("/help/full-disk-access"));
    return url;
}

QString websiteHost() {
    return website().host();
}

} // namespace SupportLinks
