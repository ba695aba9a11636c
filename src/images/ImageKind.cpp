#include "images/ImageKind.h"

#include "images/StoredNumber.h"
#include "platform/media/Medium.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace thntfs {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t kHeadBytes = 512;
using Head = std::array<std::uint8_t, kHeadBytes>;

struct Signature {
    std::string_view Text;
    ImageKind Kind;
};

constexpr Signature kSignatures[] = {
    {"EVF\x09\x0d\x0a\xff\x00"sv, ImageKind::Ewf},
    {"EVF2\x0d\x0a\x81\x00"sv, ImageKind::Ewf2},
    {"vhdxfile"sv, ImageKind::Vhdx},
    {"KDMV"sv, ImageKind::Vmdk},
    {"COWD"sv, ImageKind::Vmdk},
    {"QFI\xfb"sv, ImageKind::Qcow},
    {"# Disk DescriptorFile"sv, ImageKind::VmdkText},
};
constexpr std::string_view kVhdCookie = "conectix"sv;
constexpr std::string_view kVhdHeaderCookie = "cxsparse"sv;

bool StartsWith(const Head& head, std::string_view text) {
    return std::equal(text.begin(), text.end(), head.begin(),
                      [](char c, std::uint8_t byte) { return static_cast<std::uint8_t>(c) == byte; });
}

std::optional<Head> HeadAt(Medium& file, std::uint64_t offset) {
    Head head{};
    if (offset > file.SizeBytes() || file.ReadAt(offset, head) != kErrorNone) {
        return std::nullopt;
    }
    return head;
}

// The sum is the complement of all other bytes' one.
bool IsVhdFooter(const Head& footer) {
    constexpr std::size_t kSumOffset = 64;
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < footer.size(); ++i) {
        sum += i >= kSumOffset && i < kSumOffset + sizeof(sum) ? 0U : footer[i];
    }
    return StartsWith(footer, kVhdCookie) && BigNumberAt<std::uint32_t>(footer, kSumOffset) == ~sum;
}

// A raw disk whose last sector is that of a VHD file that lay on it doesn't become one by that.
ImageKind KindOfFooter(Medium& file, const Head& footer) {
    constexpr std::size_t kHeaderOffset = 16;
    constexpr std::size_t kSizeOffset = 48;
    constexpr std::size_t kTypeOffset = 60;
    constexpr std::uint32_t kFixed = 2;
    constexpr std::uint32_t kDynamic = 3;
    constexpr std::uint32_t kDifferences = 4;
    const std::uint32_t type = BigNumberAt<std::uint32_t>(footer, kTypeOffset);
    if (type == kFixed) {
        const std::uint64_t size = BigNumberAt<std::uint64_t>(footer, kSizeOffset);
        return size == file.SizeBytes() - kVhdFooterBytes ? ImageKind::FixedVhd : ImageKind::Raw;
    }
    if (type != kDynamic && type != kDifferences) {
        return ImageKind::Raw;
    }
    const auto header = HeadAt(file, BigNumberAt<std::uint64_t>(footer, kHeaderOffset));
    return header && StartsWith(*header, kVhdHeaderCookie) ? ImageKind::Vhd : ImageKind::Raw;
}

} // namespace

ImageKind KindOfImage(Medium& file) {
    const auto head = HeadAt(file, 0);
    if (!head) {
        return ImageKind::Raw;
    }
    for (const Signature& signature : kSignatures) {
        if (StartsWith(*head, signature.Text)) {
            return signature.Kind;
        }
    }
    if (StartsWith(*head, kVhdCookie)) {
        return ImageKind::Vhd;
    }
    if (file.SizeBytes() < 2 * kVhdFooterBytes) {
        return ImageKind::Raw;
    }
    const auto footer = HeadAt(file, file.SizeBytes() - kVhdFooterBytes);
    return footer && IsVhdFooter(*footer) ? KindOfFooter(file, *footer) : ImageKind::Raw;
}

const char* NameOfKind(ImageKind kind) {
    switch (kind) {
    case ImageKind::FixedVhd:
    case ImageKind::Vhd:
        return "VHD";
    case ImageKind::Vhdx:
        return "VHDX";
    case ImageKind::Vmdk:
    case ImageKind::VmdkText:
        return "VMDK";
    case ImageKind::Qcow:
        return "QCOW2";
    case ImageKind::Ewf:
        return "E01";
    case ImageKind::Ewf2:
        return "Ex01";
    default:
        return "raw";
    }
}

} // namespace thntfs
