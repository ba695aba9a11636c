#include "images/RawImage.h"

#include "images/ImageFault.h"
#include "platform/files/Paths.h"
#include "platform/system/CoreText.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace thntfs {

namespace {

constexpr std::size_t kNumberDigits = 3;
constexpr unsigned kLastNumberLookedFor = 999; // behind a gap
constexpr std::size_t kMostOpenPieces = 64;
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 62U;

struct Piece {
    std::string Path;
    std::uint64_t Start = 0;
    std::uint64_t Bytes = 0;
    std::unique_ptr<Medium> Handle = {};
};

// A disk in pieces of 2 GB has more of them than a process may have files open.
class JoinedMedium final : public Medium {
public:
    explicit JoinedMedium(std::vector<Piece> pieces)
        : pieces_(std::move(pieces)) {}

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
        while (!buffer.empty() && offset < SizeBytes()) {
            Piece& piece = PieceAt(offset);
            const std::uint64_t left = piece.Start + piece.Bytes - offset;
            const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, buffer.size()));
            ErrorCode code = OpenPiece(piece);
            if (code == kErrorNone) {
                code = piece.Handle->ReadAt(offset - piece.Start, buffer.first(count));
            }
            if (code != kErrorNone) {
                return code;
            }
            offset += count;
            buffer = buffer.subspan(count);
        }
        return kErrorNone;
    }

    [[nodiscard]] std::uint64_t SizeBytes() const override {
        return pieces_.back().Start + pieces_.back().Bytes;
    }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return 0; }

    [[nodiscard]] std::vector<std::string> FurtherFiles() const override {
        std::vector<std::string> paths;
        std::transform(pieces_.begin() + 1, pieces_.end(), std::back_inserter(paths),
                       [](const Piece& piece) { return piece.Path; });
        return paths;
    }

private:
    // The last one that begins at or before the offset.
    Piece& PieceAt(std::uint64_t offset) {
        const auto behind =
            std::upper_bound(pieces_.begin(), pieces_.end(), offset,
                             [](std::uint64_t o, const Piece& piece) { return o < piece.Start; });
        return *std::prev(behind);
    }

    // One that has changed its length since is not what it was.
    ErrorCode OpenPiece(Piece& piece) {
        if (piece.Handle != nullptr) {
            return kErrorNone;
        }
        MediumResult result = OpenMedium(piece.Path);
        if (result.Error != kErrorNone) {
            return result.Error;
        }
        if (result.Handle->DeviceSectorBytes() != 0 || result.Handle->SizeBytes() != piece.Bytes) {
            return kErrorNotReady;
        }
        if (open_.size() == kMostOpenPieces) {
            open_.front()->Handle.reset();
            open_.pop_front();
        }
        piece.Handle = std::move(result.Handle);
        open_.push_back(&piece);
        return kErrorNone;
    }

    std::vector<Piece> pieces_;
    std::deque<Piece*> open_; ///< the one opened longest ago first
};

class ShorterMedium final : public Medium {
public:
    ShorterMedium(std::unique_ptr<Medium> whole, std::uint64_t bytes)
        : whole_(std::move(whole))
        , bytes_(bytes) {}

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
        const std::uint64_t left = offset < bytes_ ? bytes_ - offset : 0;
        return whole_->ReadAt(
            offset, buffer.first(static_cast<std::size_t>(std::min<std::uint64_t>(left, buffer.size()))));
    }
    void ExpectScatteredReads(bool scattered) override { whole_->ExpectScatteredReads(scattered); }
    [[nodiscard]] std::uint64_t SizeBytes() const override { return bytes_; }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return 0; }
    [[nodiscard]] std::vector<std::string> FurtherFiles() const override { return whole_->FurtherFiles(); }

private:
    std::unique_ptr<Medium> whole_;
    std::uint64_t bytes_;
};

bool IsThere(const std::string& path) {
    std::error_code failure;
    return std::filesystem::exists(std::filesystem::symlink_status(path, failure));
}

// "NAME." and the number behind it, where the path ends so.
std::optional<std::pair<std::string, unsigned>> SplitNumber(const std::string& path) {
    const std::size_t dot = path.size() - kNumberDigits - 1;
    if (path.size() <= kNumberDigits || path[dot] != '.') {
        return std::nullopt;
    }
    unsigned number = 0;
    for (std::size_t i = dot + 1; i < path.size(); ++i) {
        if (path[i] < '0' || path[i] > '9') {
            return std::nullopt;
        }
        number = number * 10 + static_cast<unsigned>(path[i] - '0');
    }
    return std::pair(path.substr(0, dot + 1), number);
}

std::string NumberedName(const std::string& stem, unsigned number) {
    const std::string digits = std::to_string(number);
    return stem + std::string(kNumberDigits - std::min(kNumberDigits, digits.size()), '0') + digits;
}

void RefuseGap(const std::string& stem, unsigned missing) {
    for (unsigned number = missing + 1; number <= kLastNumberLookedFor; ++number) {
        if (IsThere(NumberedName(stem, number))) {
            throw ImageFault{"It is a piece of an image whose piece " + NumberedName(stem, missing) +
                             " is missing, while " + NumberedName(stem, number) + " is there."};
        }
    }
}

// What splits a disk gives all pieces but the last one size. Behind a cut one everything would be moved.
void RefuseCutPieces(const std::vector<Piece>& pieces) {
    const std::uint64_t usual = pieces.front().Bytes;
    for (const Piece& piece : pieces) {
        const bool isLast = &piece == &pieces.back();
        if (piece.Bytes > usual || (piece.Bytes < usual && !isLast)) {
            throw ImageFault{
                "Its piece " + piece.Path + " has " + std::to_string(piece.Bytes) + " bytes and " +
                pieces.front().Path + " has " + std::to_string(usual) +
                ": one of them is cut off, or they don't belong together. A file under another name is "
                "opened alone."};
        }
    }
}

} // namespace

std::unique_ptr<Medium> OpenImageFilePart(const std::string& path, const std::string& role) {
    std::error_code failure;
    const auto kind = std::filesystem::status(path, failure).type();
    if (kind != std::filesystem::file_type::not_found && kind != std::filesystem::file_type::regular) {
        throw ImageFault{"The " + role + ", " + path +
                         ", is no file. Nothing else is opened on an image's word."};
    }
    MediumResult result = OpenMedium(path);
    if (result.Error != kErrorNone || result.Handle->DeviceSectorBytes() != 0) {
        throw ImageFault{"The " + role + ", " + path + ", can't be opened: " + SystemErrorText(result.Error)};
    }
    return std::move(result.Handle);
}

std::vector<std::string> PiecesOfImage(const std::string& path) {
    std::vector<std::string> paths = {path};
    const auto split = SplitNumber(path);
    if (!split || split->second > 1) {
        return paths;
    }
    const auto& [stem, first] = *split;
    unsigned next = first + 1;
    for (std::string name = NumberedName(stem, next); IsThere(name); name = NumberedName(stem, ++next)) {
        paths.push_back(std::move(name));
    }
    const bool isNumbered = paths.size() > 1 || first == 1;
    if (isNumbered) {
        RefuseGap(stem, next);
    }
    if (first == 1 && IsThere(NumberedName(stem, 0))) {
        throw ImageFault{"It is the second piece of an image. Open the first one, " + NumberedName(stem, 0) +
                         "."};
    }
    return paths;
}

std::unique_ptr<Medium> JoinPieces(const std::vector<std::string>& paths) {
    std::vector<Piece> pieces;
    std::uint64_t end = 0;
    for (const std::string& path : paths) {
        const std::uint64_t bytes = OpenImageFilePart(path, "piece")->SizeBytes();
        if (bytes > kMostBytes - end) {
            throw ImageFault{CoreText("Core", "Its pieces are larger than a disk can be.")};
        }
        pieces.push_back({path, end, bytes});
        end += bytes;
    }
    RefuseCutPieces(pieces);
    return std::make_unique<JoinedMedium>(std::move(pieces));
}

std::unique_ptr<Medium> CutMedium(std::unique_ptr<Medium> whole, std::uint64_t bytes) {
    return std::make_unique<ShorterMedium>(std::move(whole), bytes);
}

} // namespace thntfs
