#pragma once

#include <QImage>
#include <QtGlobal>
#include <memory>

namespace mms {

// An in-memory 24-bit picture laid out the way the JPEG encoder is fed: blue-green-red bytes, the
// bottom row first, every row padded to a multiple of 4 bytes. One instance holds one conversion.
class cDIBSection {
public:
    cDIBSection() = default;
    ~cDIBSection() = default;
    cDIBSection(const cDIBSection&) = delete;
    cDIBSection& operator=(const cDIBSection&) = delete;
    cDIBSection(cDIBSection&&) noexcept = default;
    cDIBSection& operator=(cDIBSection&&) noexcept = default;

    // Row length in bytes: width times 3 rounded up to a multiple of 4.
    int BytesPerScanLine() const { return (width_ * 3 + 3) & ~3; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    // First byte of the pixel data (the start of the bottom row); null when nothing was created.
    uchar* DIBSectionBitsPtr() { return bits_.get(); }
    const uchar* DIBSectionBitsPtr() const { return bits_.get(); }
    bool isNull() const { return !bits_; }

    // Frees the pixels; the object is empty afterwards.
    void ClearUp();
    // Replaces the contents with a black bitmap of that size. False (and empty) when the size is not
    // positive or the memory cannot be had.
    bool Create(int width, int height);
    // Copies a rectangle of the picture into the bitmap at (0, 0); -1 takes the bitmap's own width or
    // height. Parts outside either picture are left as they were. False when nothing could be copied
    // (no bitmap, no picture, or no memory to convert it).
    bool LoadPictureBlt(const QImage& picture, int srcLeft = 0, int srcTop = 0, int srcWidth = -1,
                        int srcHeight = -1);
    // A bitmap of the picture's size holding the picture. Greyscale and palette pictures become colour;
    // transparent parts are laid on white. False when the picture is null or too large to hold.
    bool CreateFromPicture(const QImage& picture);

    // The bitmap as a top-down picture, for checks and previews.
    QImage toImage() const;

private:
    std::unique_ptr<uchar[]> bits_;
    int width_ = 0;
    int height_ = 0;
};

} // namespace mms
