#include "disktools/CopyRules.h"

#include "disktools/CopyDisk.h"
#include "engine/EngineState.h"
#include "images/AnyMedium.h"
#include "platform/files/Paths.h"
#include "platform/media/DiskIdentity.h"

namespace thntfs {

namespace {

constexpr std::uint64_t kMapRoomBytes = 1U << 20U; ///< for the map and its successor

std::uint64_t BytesOfCopy() { return CopiedBytes(Engine.SourceDisk.TotalSectors, kCopyTransferSectors); }

CopyVerdict Refused(CopyRefusal why, const std::string& path) {
    CopyVerdict verdict;
    verdict.Why = why;
    verdict.Path = path;
    return verdict;
}

CopyVerdict RefusedForSize(CopyRefusal why, const std::string& path, std::uint64_t needed,
                           std::uint64_t there) {
    CopyVerdict verdict = Refused(why, path);
    verdict.Needed = needed;
    verdict.There = there;
    return verdict;
}

} // namespace

CopyVerdict CheckCopyPlaces(const std::string& source, const std::string& target) {
    for (const std::string& file : FilesOfMedium(source)) {
        if (SameMedium(target, file)) {
            return Refused(CopyRefusal::OneMedium, target);
        }
        if (SharesMedium(target, file)) {
            return Refused(CopyRefusal::TargetOnSource, target);
        }
        if (SharesMedium(file, target)) {
            return Refused(CopyRefusal::SourceOnTarget, target);
        }
    }
    return IsMounted(target) ? Refused(CopyRefusal::TargetInUse, target) : CopyVerdict{};
}

CopyVerdict CheckSource(const std::string& path) {
    return Engine.SourceDisk.TotalSectors == 0 ? Refused(CopyRefusal::SourceEmpty, path) : CopyVerdict{};
}

std::string MountedRemark(const std::string& source) {
    return IsMounted(source)
               ? source + " is mounted: what is written to it meanwhile may stand in the image in part."
               : std::string();
}

CopyVerdict CheckTargetSize(const std::string& target, std::uint64_t targetBytes) {
    const std::uint64_t needed = BytesOfCopy();
    return targetBytes < needed ? RefusedForSize(CopyRefusal::TargetTooSmall, target, needed, targetBytes)
                                : CopyVerdict{};
}

CopyVerdict CheckImageRoom(const std::string& image, std::uint64_t bytesThere) {
    const std::uint64_t bytes = BytesOfCopy();
    const std::uint64_t needed = kMapRoomBytes + (bytes > bytesThere ? bytes - bytesThere : 0);
    const auto free = FreeBytesAt(image);
    return free && *free < needed ? RefusedForSize(CopyRefusal::TooLittleRoom, image, needed, *free)
                                  : CopyVerdict{};
}

} // namespace thntfs
