#pragma once

#include <QtGlobal>

namespace thntfs {

/// The most that a picture may take as pixels of 32 bits.
inline constexpr int kMaxPictureMegabytes = 512;
inline constexpr qint64 kMaxPicturePixels = (qint64{kMaxPictureMegabytes} << 20U) / 4;

inline constexpr quint32 kPictureMark = 0x31434950;

/// What goes ahead of a picture's pixels from the process that has decoded it. They follow line by line
/// without gaps, 4 bytes each: RGB32, or ARGB32_Premultiplied where parts of the picture may be transparent.
struct PictureHeader {
    quint32 Mark = kPictureMark;
    qint32 Width = 0;
    qint32 Height = 0;
    qint32 HasAlpha = 0;
};

} // namespace thntfs
