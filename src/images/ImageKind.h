#pragma once

#include <cstdint>
#include <string>

namespace thntfs {

class Medium;

/// What the contents of a file make it.
enum class ImageKind : std::uint8_t {
    Raw,      ///< anything that isn't one of the following
    FixedVhd, ///< raw sectors with a footer behind them
    Vhd,      ///< dynamic, or the differences to another one
    Vhdx,
    Vmdk,     ///< with its data, or a piece of it
    VmdkText, ///< a text that names the files with the data
    Qcow,
    Ewf, ///< E01 or S01
    Ewf2 ///< Ex01
};

/// Bytes of the footer behind the sectors of a fixed VHD.
inline constexpr std::uint64_t kVhdFooterBytes = 512;

/// Looks at the first and the last bytes. A signature counts only where its format has it: a VHD's footer,
/// which stands where a raw disk has its last sector, must be whole and fit the size. A file whose start
/// can't be read counts as raw.
ImageKind KindOfImage(Medium& file);

/// As people call the format: "E01".
const char* NameOfKind(ImageKind kind);

} // namespace thntfs
