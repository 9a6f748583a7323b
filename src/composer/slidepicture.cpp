#include "composer/slidepicture.h"

#include "image/exiforientation.h"
#include "image/uprightdecode.h"
#include "video/clipthumbnail.h"

#include <QImageReader>
#include <QPainter>

namespace mms {

namespace {
const QColor kBackground(0xf1, 0xf3, 0xf4);
const QColor kPage(0xff, 0xff, 0xff);
const QColor kPageEdge(0xda, 0xdc, 0xe0);
} // namespace

namespace {

QImage drawBlankThumbnail() {
    QImage image(kStripThumbnailSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(kBackground);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    // A portrait page in the proportions of the phone screen (160 by 140).
    const QRectF page(13.5, 5.5, 43, 59);
    p.setPen(QPen(kPageEdge, 1));
    p.setBrush(kPage);
    p.drawRoundedRect(page, 3, 3);
    // The image region above the text region, as faint placeholders.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0xe8, 0xea, 0xed));
    p.drawRoundedRect(QRectF(18, 10, 34, 30), 2, 2);
    p.drawRoundedRect(QRectF(18, 45, 34, 4), 1, 1);
    p.drawRoundedRect(QRectF(18, 52, 24, 4), 1, 1);
    return image;
}

} // namespace

// Drawn once: every new slide shows it.
QImage blankThumbnail() {
    static const QImage blank = drawBlankThumbnail();
    return blank;
}

QImage fittedThumbnail(const QImage& picture, QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(kBackground);
    if (picture.isNull()) return image;
    const QImage scaled = picture.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter p(&image);
    p.drawImage((size.width() - scaled.width()) / 2, (size.height() - scaled.height()) / 2, scaled);
    return image;
}

QImage fitToPhoneScreen(const QImage& picture) {
    if (picture.isNull()) return picture;
    if (picture.width() <= kPhonePictureSize.width() && picture.height() <= kPhonePictureSize.height())
        return picture;
    return picture.scaled(kPhonePictureSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QImage loadPicture(const QString& path) {
    if (path.isEmpty()) return {};
    QImageReader reader(path);
    const QImageIOHandler::Transformations orientation = uprightTransform(path, reader);
    return applyOrientation(reader.read(), orientation);
}

QImage loadSlideVisual(const QString& path) {
    return isVideoClipPath(path) ? firstVideoFrame(path) : loadPicture(path);
}

QImage markedAsClip(QImage thumbnail) {
    if (thumbnail.isNull()) return thumbnail;
    QPainter p(&thumbnail);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF badge(thumbnail.width() - 22, thumbnail.height() - 18, 18, 14);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 0, 160));
    p.drawRoundedRect(badge, 3, 3);
    p.setBrush(Qt::white);
    const QPointF c = badge.center();
    const QPointF play[] = {{c.x() - 3, c.y() - 4}, {c.x() - 3, c.y() + 4}, {c.x() + 4, c.y()}};
    p.drawPolygon(play, 3);
    return thumbnail;
}

} // namespace mms
