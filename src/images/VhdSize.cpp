#include "images/VhdSize.h"

#include "images/ImageKind.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>
#include <utility>

namespace thntfs {

namespace {

using VhdFooter = std::array<std::uint8_t, kVhdFooterBytes>;
constexpr std::ptrdiff_t kFirstSizeOffset = 40;
constexpr std::ptrdiff_t kPresentSizeOffset = 48;
constexpr std::ptrdiff_t kSizeBytes = 8;
constexpr std::size_t kFooterSumOffset = 64;
constexpr std::string_view kFooterCookie = "conectix";

bool IsFooter(Medium& file, std::uint64_t offset, VhdFooter& footer) {
    return file.ReadAt(offset, footer) == kErrorNone &&
           std::equal(kFooterCookie.begin(), kFooterCookie.end(), footer.begin());
}

class ResizedVhd final : public Medium {
public:
    ResizedVhd(std::unique_ptr<Medium> file, const VhdFooter& footer)
        : file_(std::move(file))
        , footer_(footer) {}

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
        const ErrorCode code = file_->ReadAt(offset, buffer);
        const std::uint64_t place = SizeBytes() - kVhdFooterBytes;
        for (std::uint64_t at = std::max(offset, place); at < std::min(offset + buffer.size(), SizeBytes());
             ++at) {
            buffer[static_cast<std::size_t>(at - offset)] = footer_[static_cast<std::size_t>(at - place)];
        }
        return code;
    }
    [[nodiscard]] std::uint64_t SizeBytes() const override { return file_->SizeBytes(); }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return 0; }

private:
    std::unique_ptr<Medium> file_;
    VhdFooter footer_;
};

// The sum is the complement of all other bytes' one.
void PutSum(VhdFooter& footer) {
    std::fill_n(footer.begin() + kFooterSumOffset, sizeof(std::uint32_t), std::uint8_t{0});
    const std::uint32_t sum = ~std::accumulate(footer.begin(), footer.end(), std::uint32_t{0});
    for (unsigned i = 0; i < sizeof(sum); ++i) {
        footer[kFooterSumOffset + i] = static_cast<std::uint8_t>(sum >> (24U - 8U * i));
    }
}

bool HasRightSum(const VhdFooter& footer) {
    VhdFooter sound = footer;
    PutSum(sound);
    return sound == footer;
}

} // namespace

std::unique_ptr<Medium> ShowPresentVhdSize(std::unique_ptr<Medium> file) {
    VhdFooter footer{};
    if (file->SizeBytes() < kVhdFooterBytes ||
        !IsFooter(*file, file->SizeBytes() - kVhdFooterBytes, footer) || !HasRightSum(footer) ||
        std::equal(footer.begin() + kFirstSizeOffset, footer.begin() + kPresentSizeOffset,
                   footer.begin() + kPresentSizeOffset)) {
        return file;
    }
    std::copy_n(footer.begin() + kPresentSizeOffset, kSizeBytes, footer.begin() + kFirstSizeOffset);
    PutSum(footer);
    return std::make_unique<ResizedVhd>(std::move(file), footer);
}

} // namespace thntfs
