#pragma once

#include "platform/system/Bytes.h"
#include "platform/system/ErrorCodes.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

class File;

/// What ends a load or a save. Thrown within this folder only.
struct ScanInfoFault {
    ErrorCode Code = kErrorNone; ///< of the call that failed; 0 where the file isn't what it should be
    std::string Text = {};       ///< the text for the log where it isn't the usual one
    std::string Medium = {};     ///< path of the medium where that is what couldn't be opened
};

/// Bytes moved at a time when a catalogue file is copied.
inline constexpr std::size_t kCopyBytes = std::size_t{1} << 20U;

/// Reads a scan information file from its beginning to its end, never beyond the size that it had when it was
/// opened. All calls throw ScanInfoFault: with a code where reading fails, without one where the file ends
/// before what was asked for.
class ScanInfoReader {
public:
    explicit ScanInfoReader(const std::string& path);
    ~ScanInfoReader();
    ScanInfoReader(const ScanInfoReader&) = delete;
    ScanInfoReader& operator=(const ScanInfoReader&) = delete;

    void Take(Bytes wanted);
    std::uint32_t TakeU32();
    std::uint64_t TakeU64();
    template <std::size_t N>
    std::array<std::uint8_t, N> TakeRecord() {
        std::array<std::uint8_t, N> record{};
        Take(record);
        return record;
    }

    /// Copies the next bytes to the end of another file.
    void CopyTo(File& target, std::uint64_t bytes);

    /// Bytes not taken yet.
    [[nodiscard]] std::uint64_t Left() const { return size_ - position_; }

private:
    void Fill();

    std::unique_ptr<File> file_;
    std::uint64_t size_ = 0;
    std::uint64_t position_ = 0; ///< of the next byte to be taken
    std::vector<std::uint8_t> window_;
    std::uint64_t windowStart_ = 0;
    std::size_t windowBytes_ = 0; ///< valid ones
};

/// Writes to a file in big pieces. A call that fails throws ScanInfoFault with its code.
class ScanInfoWriter {
public:
    explicit ScanInfoWriter(File& file);

    void Put(ConstBytes bytes);
    void PutU32(std::uint32_t number);
    void PutU64(std::uint64_t number);
    /// Puts the whole of another file behind its size (u64).
    void PutFile(const std::string& path);
    /// Writes what is still buffered.
    void Flush();

private:
    File& file_;
    std::vector<std::uint8_t> buffer_;
};

/// Throws where a code isn't 0.
void CheckScanInfo(ErrorCode code);

} // namespace thntfs
