#pragma once

#include <QImage>
#include <QString>
#include <string_view>

class QFile;

namespace thntfs {

/// Whether a file's name says that it is a picture: what follows its first dot, in any case, is a suffix of a
/// format that the image library reads here. A name without a dot is its own suffix.
bool IsImageName(std::u16string_view name);

/// A harmless file name for a copy of a picture: fixed but for the suffix, which is one of the library's.
QString PictureCopyName(std::u16string_view name);

/// Reads a picture from an open file, whose name tells the format where the bytes don't; of an animation the
/// first. It is turned as its camera has noted. Null where it is damaged, no picture, or takes more than 512
/// MB as pixels of 32 bits. A hostile one may crash the process or never end: PictureLoader sees to that.
QImage LoadPicture(QFile& file);

} // namespace thntfs
