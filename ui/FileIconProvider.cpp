#include "ui/FileIconProvider.h"

#include "ui/SymbolMap.h"

#include <QFile>
#include <QMimeDatabase>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrl>

#include <sys/stat.h>

namespace {

constexpr int defaultSide = 32;

QImage renderSvg(const QString& resource, int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(resource);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(0, 0, side, side));
    return image;
}

} // namespace

FileIconProvider::FileIconProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QString FileIconProvider::pathFromId(const QString& id) {
    // Decode to bytes first: a name need not be valid UTF-8.
    return QFile::decodeName(QByteArray::fromPercentEncoding(id.toUtf8()));
}

QMimeType FileIconProvider::mimeTypeOf(const QString& path) {
    QMimeDatabase database;
    struct stat status {};
    if (::lstat(QFile::encodeName(path).constData(), &status) == 0) {
        if (S_ISDIR(status.st_mode))
            return database.mimeTypeForName(QStringLiteral("inode/directory"));
        if (S_ISREG(status.st_mode))
            return database.mimeTypeForFile(path, QMimeDatabase::MatchDefault);
    }
    // Links, devices, pipes and missing entries: by name only, so nothing is opened
    // and no link is followed.
    return database.mimeTypeForFile(path, QMimeDatabase::MatchExtension);
}

QIcon FileIconProvider::themeIcon(const QMimeType& type) {
    return QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
}

QString FileIconProvider::bundledIconPath(bool folder) {
    return QLatin1String(SymbolMap::iconFolder) +
           (folder ? QStringLiteral("generic-folder.svg") : QStringLiteral("generic-file.svg"));
}

QImage FileIconProvider::iconImage(const QString& path, int side) {
    const QMimeType type = mimeTypeOf(path);
    const QIcon icon = themeIcon(type);
    if (!icon.isNull()) {
        QImage image = icon.pixmap(QSize(side, side)).toImage();
        if (!image.isNull()) {
            if (image.width() != side || image.height() != side)
                image = image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            return image;
        }
    }
    const bool folder = type.name() == QLatin1String("inode/directory");
    return renderSvg(bundledIconPath(folder), side);
}

QImage FileIconProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const int requested = std::max(requestedSize.width(), requestedSize.height());
    QImage image = iconImage(pathFromId(id), requested > 0 ? requested : defaultSide);
    if (size)
        *size = image.size();
    return image;
}
