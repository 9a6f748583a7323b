#include "composer/phonescreen.h"

#include "composer/slidepicture.h"

#include <QFileInfo>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>
#include <algorithm>

namespace mms {

namespace {

const QColor kScreen(0xff, 0xff, 0xff);
const QColor kInk(0x20, 0x21, 0x24);
const QColor kMuted(0x80, 0x86, 0x8b);
const QColor kFaint(0xf1, 0xf3, 0xf4);

// Font sizes in screen pixels: one line fills the 20-pixel text region, two lines share it.
constexpr int kOneLinePixels = 12;
constexpr int kTwoLinePixels = 8;
constexpr int kTextMargin = 3;

QRect scaled(const QRect& r, int scale) {
    return QRect(r.topLeft() * scale, r.size() * scale);
}

QFont screenFont(int pixels) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(pixels);
    return font;
}

// A clip or an unreadable picture: a glyph in the middle of the region and the file's name below.
void drawPlaceholder(QPainter& p, const QRect& region, bool clip, const QString& name, int scale) {
    p.fillRect(region, clip ? kInk : kFaint);
    const QColor ink = clip ? kScreen : kMuted;
    const QPointF centre(region.center().x() + 0.5, region.top() + region.height() * 0.42);
    const qreal r = 14.0 * scale;
    p.setRenderHint(QPainter::Antialiasing);
    if (clip) {
        QPainterPath triangle;
        triangle.moveTo(centre + QPointF(-r * 0.6, -r * 0.75));
        triangle.lineTo(centre + QPointF(r * 0.8, 0));
        triangle.lineTo(centre + QPointF(-r * 0.6, r * 0.75));
        triangle.closeSubpath();
        p.fillPath(triangle, ink);
    } else {
        const QRectF frame(centre.x() - r, centre.y() - r * 0.75, 2 * r, 1.5 * r);
        p.setPen(QPen(ink, 1.5 * scale));
        p.setBrush(Qt::NoBrush);
        p.drawRect(frame);
        p.drawLine(frame.topLeft(), frame.bottomRight());
        p.drawLine(frame.topRight(), frame.bottomLeft());
    }
    const QFont font = screenFont(kTwoLinePixels * scale);
    const QRect line(region.left() + kTextMargin * scale, int(centre.y() + r * 1.1),
                     region.width() - 2 * kTextMargin * scale, 12 * scale);
    p.setFont(font);
    p.setPen(ink);
    p.drawText(line, Qt::AlignHCenter | Qt::AlignTop,
               QFontMetrics(font).elidedText(name, Qt::ElideMiddle, line.width()));
}

void drawPicture(QPainter& p, const QString& path, int scale) {
    const QRect region = scaled(kImageRegion, scale);
    // A clip shows its first picture; one that cannot be read, the clip sign.
    const QImage picture = fitToPhoneScreen(loadSlideVisual(path));
    if (picture.isNull()) {
        drawPlaceholder(p, region, isVideoClipPath(path), QFileInfo(path).fileName(), scale);
        return;
    }
    const QPoint at((kImageRegion.width() - picture.width()) / 2,
                    (kImageRegion.height() - picture.height()) / 2);
    // Pixel for pixel, as a phone screen seen close up: crisp at any zoom.
    p.drawImage(QRect(at * scale, picture.size() * scale), picture);
}

void drawText(QPainter& p, QString text, int scale) {
    const QRect region = scaled(kTextRegion, scale);
    const QRect box = region.adjusted(kTextMargin * scale, 0, -kTextMargin * scale, 0);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    p.setPen(kInk);
    p.setRenderHint(QPainter::TextAntialiasing);

    const QFont large = screenFont(kOneLinePixels * scale);
    if (!text.contains(QLatin1Char('\n')) && QFontMetrics(large).horizontalAdvance(text) <= box.width()) {
        p.setFont(large);
        p.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, text);
        return;
    }
    // Two lines: the first wrapped at a word boundary, the second holds the rest, cut to fit.
    const QFont small = screenFont(kTwoLinePixels * scale);
    QString laidOut = text;
    laidOut.replace(QLatin1Char('\n'), QChar::LineSeparator);
    QTextLayout layout(laidOut, small);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine first = layout.createLine();
    first.setLineWidth(box.width());
    layout.endLayout();
    const QString line1 = text.mid(first.textStart(), first.textLength()).trimmed();
    QString rest = text.mid(first.textStart() + first.textLength());
    rest.replace(QLatin1Char('\n'), QLatin1Char(' '));
    const QString line2 = QFontMetrics(small).elidedText(rest.trimmed(), Qt::ElideRight, box.width());

    p.setFont(small);
    const int half = box.height() / 2;
    p.drawText(QRect(box.left(), box.top(), box.width(), half), Qt::AlignLeft | Qt::AlignVCenter, line1);
    p.drawText(QRect(box.left(), box.top() + half, box.width(), box.height() - half),
               Qt::AlignLeft | Qt::AlignVCenter, line2);
}

} // namespace

QImage renderPhoneScreen(const ScreenSlide& slide, int scale) {
    scale = std::clamp(scale, 1, 16);
    QImage screen(kPhoneScreenSize * scale, QImage::Format_RGB32);
    screen.fill(kScreen);
    QPainter p(&screen);
    if (!slide.picturePath.isEmpty()) {
        p.save();
        p.setClipRect(scaled(kImageRegion, scale));
        drawPicture(p, slide.picturePath, scale);
        p.restore();
    }
    if (!slide.text.isEmpty()) {
        p.setClipRect(scaled(kTextRegion, scale));
        drawText(p, slide.text, scale);
    }
    return screen;
}

} // namespace mms
