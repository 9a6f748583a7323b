#pragma once

#include <QImage>
#include <QString>

namespace mms {

// The first picture of a video, in its shape, for thumbnails and the phone screen; a null image when
// the file holds no picture that can be read within a second or so (a damaged or hostile file must
// not hold up the window that asked).
QImage firstVideoFrame(const QString& path);

} // namespace mms
