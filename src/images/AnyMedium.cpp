#include "images/AnyMedium.h"

#include "images/ImageFault.h"
#include "images/ImageLibrary.h"
#include "images/RawImage.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace thntfs {

namespace {

std::unique_ptr<Medium> OpenByKind(ImageSource source) {
    switch (source.Kind) {
    case ImageKind::FixedVhd: {
        const std::uint64_t bytes = source.File->SizeBytes() - kVhdFooterBytes;
        return CutMedium(std::move(source.File), bytes);
    }
    case ImageKind::Vhd:
    case ImageKind::Vhdx:
        return OpenVhd(std::move(source));
    case ImageKind::Vmdk:
    case ImageKind::VmdkText:
        return OpenVmdk(std::move(source));
    case ImageKind::Qcow:
        return OpenQcow(std::move(source));
    case ImageKind::Ewf:
    case ImageKind::Ewf2:
        return OpenEwf(std::move(source));
    default:
        return std::move(source.File);
    }
}

std::unique_ptr<Medium> OpenFile(const std::string& path, std::unique_ptr<Medium> file, unsigned layer) {
    const std::vector<std::string> pieces = PiecesOfImage(path);
    if (pieces.size() > 1) {
        file = JoinPieces(pieces);
    }
    const ImageKind kind = KindOfImage(*file);
    auto medium = OpenByKind({path, kind, std::move(file), layer});
    if (kind != ImageKind::Raw && medium->SizeBytes() == 0) {
        throw DamagedImage(kind);
    }
    return medium;
}

} // namespace

MediumResult OpenAnyMedium(const std::string& path) {
    MediumResult result = OpenMedium(path);
    if (result.Error != kErrorNone || result.Handle->DeviceSectorBytes() != 0) {
        return result;
    }
    try {
        result.Handle = OpenFile(path, std::move(result.Handle), 0);
    } catch (const ImageFault& fault) {
        return {nullptr, fault.Code, fault.Why};
    }
    return result;
}

std::unique_ptr<Medium> OpenLayerBelow(const std::string& path, unsigned layer) {
    if (layer == kMostLayers) {
        throw TooManyLayers();
    }
    return OpenFile(path, OpenImageFilePart(path, "image that it builds on"), layer);
}

std::vector<std::string> FilesOfMedium(const std::string& path) {
    std::vector<std::string> files = {path};
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure)) {
        return files; // no need to wake a disk up for it
    }
    if (const MediumResult result = OpenAnyMedium(path); result.Handle != nullptr) {
        const std::vector<std::string> further = result.Handle->FurtherFiles();
        files.insert(files.end(), further.begin(), further.end());
    }
    return files;
}

} // namespace thntfs
