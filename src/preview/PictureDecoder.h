#pragma once

namespace thntfs {

/// The first word of the command line by which the program is started as the decoder of a picture. Behind it
/// stands a file name that tells the format where the bytes don't.
inline constexpr const char* kDecoderWord = "--decode-picture";

/// Whether the program has been started as one.
bool IsDecoderCall(int argc, char** argv);

/// Decodes the picture at standard input, which must be a file, to standard output: a PictureHeader and the
/// pixels. The process confines itself first, and ends here: with 0 only where all of it has been written.
/// Nothing of the window toolkit may have been set up before.
[[noreturn]] void RunDecoder(char** argv);

} // namespace thntfs
