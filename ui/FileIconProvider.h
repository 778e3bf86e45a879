#pragma once
// Serves `image://fileicon/<percent-encoded path>`: the desktop's icon for the type of
// the file at that path. The type comes from QMimeDatabase without following a
// symbolic link (a link is typed by its name alone, a regular file by name and
// content); the icon from the theme's icon for the type, else the theme's generic
// icon for it, else a bundled generic file or folder icon (an empty theme, as on the
// offscreen platform, ends there). Runs on the interface thread; reads at most the
// head of a regular file.

#include <QIcon>
#include <QImage>
#include <QMimeType>
#include <QQuickImageProvider>
#include <QSize>
#include <QString>

class FileIconProvider : public QQuickImageProvider {
public:
    FileIconProvider();

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

    // The image for `path` at `side` × `side` pixels.
    static QImage iconImage(const QString& path, int side);

    // The MIME type of `path`, never following a final symbolic link.
    static QMimeType mimeTypeOf(const QString& path);

    // The theme icon for the type, or a null icon when the theme has neither the
    // type's icon nor its generic icon.
    static QIcon themeIcon(const QMimeType& type);

    // Resource path of the bundled generic icon.
    static QString bundledIconPath(bool folder);

    // The path named by an image id (percent-encoded, with or without the leading '/').
    static QString pathFromId(const QString& id);
};
