#include "partitions/DiskContents.h"

#include "engine/EngineState.h"
#include "partitions/DiskEnumeration.h"
#include "partitions/OpenSource.h"
#include "partitions/ReadVolumes.h"
#include "partitions/VolumeText.h"
#include "platform/media/DiskIdentity.h"
#include "platform/media/Medium.h"
#include "platform/system/SizeText.h"

#include <utility>

namespace thntfs {

namespace {

using ContentLines = std::vector<std::string>;

void AddDisk(ContentLines& lines, const DiskProperties& disk) {
    const auto info = DescribeDisk(disk, 0);
    if (!info) {
        return;
    }
    lines.push_back("disk " + info->Name + ": " + info->Model + ", " + info->Size + ", serial number " +
                    info->Serial);
    for (const DiskPart& part : disk.Parts) {
        lines.push_back("partition " + part.Path + ": " + ByteText(part.SizeBytes));
    }
}

void AddVolumes(ContentLines& lines, const std::string& path, std::unique_ptr<Medium> medium) {
    ResetEngineState();
    Engine.SourceDisk.MediaHandle = std::move(medium);
    if (Engine.SourceDisk.MediaHandle != nullptr && TakeSource(path) == kErrorNone) {
        ReadVolumes();
        for (const ListedVolume& volume : ListVolumes()) {
            if (volume.Candidate != nullptr) {
                lines.push_back("NTFS volume " + VolumeText(volume));
            }
        }
    }
    ResetEngineState();
}

} // namespace

std::vector<std::string> DiskContents(const std::string& path, std::unique_ptr<Medium> medium) {
    ContentLines lines;
    for (const DiskProperties& disk : ListDisks()) {
        if (SameMedium(disk.Path, path)) {
            AddDisk(lines, disk);
        }
    }
    AddVolumes(lines, path, std::move(medium));
    return lines;
}

} // namespace thntfs
