#pragma once

#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>

namespace mms {

// The phone screen the message is laid out for: an image region above a text region.
inline constexpr QSize kPhoneScreenSize{160, 140};
inline constexpr QRect kImageRegion{0, 0, 160, 110};
inline constexpr QRect kTextRegion{0, 110, 160, 20};

// What the phone screen shows of one slide.
struct ScreenSlide {
    QString picturePath; // a picture or a 3GP clip; empty for none
    QString text;
};

// The phone screen showing `slide` at `scale` times its size in pixels (scale 1 to 16), as the
// player and `mmsc render` show it. The picture is scaled down into the image region (never
// enlarged) and centred, then enlarged by `scale` pixel for pixel; a clip shows a placeholder
// with its name, a picture that cannot be read another. The text takes one line of the text region
// when it fits, else two smaller lines, the second cut with an ellipsis; nothing is drawn outside
// its region. Needs a QGuiApplication for the fonts.
QImage renderPhoneScreen(const ScreenSlide& slide, int scale);

} // namespace mms
