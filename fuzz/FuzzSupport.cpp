#include "FuzzSupport.h"

#include "catalogue/Catalogue.h"
#include "catalogue/CatalogueReader.h"
#include "catalogue/EntryWalk.h"
#include "catalogue/FindEntry.h"
#include "content/EntryContent.h"
#include "content/TargetName.h"
#include "engine/LocateMft.h"
#include "platform/files/TargetFolder.h"
#include "platform/files/WorkFolder.h"
#include "platform/media/Medium.h"
#include "platform/system/Text.h"
#include "support/MemoryFile.h"
#include "support/VolumeBuilderMedium.h"

#include <cstdlib>

namespace thntfs::fuzz {

namespace {

constexpr std::uint64_t kMaxContents = 64;
constexpr std::uint64_t kMostContent = 1U << 20U;
constexpr std::size_t kMediumBytes = 65536;
constexpr std::uint64_t kDescriptionAt = 4; // behind the magic

/// An image of zeros. Media are opened by another road than files.
class MediumFile {
public:
    MediumFile() {
        if (folder_.Create() != kErrorNone) {
            std::abort();
        }
        test::WriteFileBytes(Path(), std::vector<std::uint8_t>(kMediumBytes));
    }

    [[nodiscard]] std::string Path() const { return folder_.Path() + "/medium.img"; }

private:
    WorkFolder folder_;
};

// From here on all files lie in memory, the engine's catalogue among them.
void KeepFilesInMemory() {
    test::UseFilesInMemory();
    Engine.CatalogueFolder = "/catalogue";
}

void WalkCatalogue() {
    try {
        for (const WalkReach reach : {WalkReach::Part, WalkReach::Whole}) {
            EntryWalk walk(WalkStart{}, reach);
            while (walk.Next()) {
                if (!IsPlainName(TargetName(walk.Item().Name))) {
                    std::abort();
                }
            }
        }
        FindEntries("/a/b");
        std::uint64_t bytes = 0;
        std::uint32_t files = 0;
        std::uint32_t folders = 0;
        ListFolder(0, bytes, files, folders, true);
    } catch (const CUserException&) {
    }
}

void ReadContents() {
    const std::uint64_t count = std::min(CatalogueEntryCount(), kMaxContents);
    for (std::uint64_t id = 0; id < count; ++id) {
        CatalogueItem item;
        test::MemoryFile sink;
        sink.Room = kMostContent;
        try {
            Engine.BytesWritten = 0;
            if (LoadEntryInto(static_cast<std::uint32_t>(id), item) != 0) {
                MissingData missing;
                ReadEntryContent(item, sink, missing);
            }
        } catch (const CUserException&) {
        }
    }
}

} // namespace

void OpenPlainVolume(ConstBytes bytes) {
    ResetEngineState();
    Engine.SourceDisk.MediaHandle =
        test::MakeMemoryMedium(std::make_shared<test::ByteVector>(bytes.begin(), bytes.end()));
    Engine.SourceDisk.BytesPerSector = 512;
    Engine.SourceDisk.TotalSectors = bytes.size() / 512;
    Engine.ScanRunFlag = 1;

    PartitionCandidate candidate;
    candidate.TotalSectors = Engine.SourceDisk.TotalSectors;
    candidate.MftCluster = 1;
    candidate.MftMirrCluster = 8;
    candidate.MftSector = 8;
    candidate.SectorsPerCluster = 8;
    LoadVolumeParams(candidate);

    Engine.VolumeParams.MftExtents.push_back({4, 1});
}

std::string WriteInfoFile(ConstBytes input) {
    static const MediumFile medium;
    constexpr const char* kPath = "/input";
    KeepFilesInMemory();
    std::vector<std::uint8_t>& bytes = test::FileInMemory(kPath).Content;
    bytes.assign(input.begin(), input.end());
    const std::u16string path = WideText(medium.Path());
    for (std::size_t i = 0; i <= path.size(); ++i) {
        PutNumber<std::uint16_t>(bytes, kDescriptionAt + 2 * i, i < path.size() ? path[i] : u'\0');
    }
    return kPath;
}

void TakeEachIntoUse() {
    for (const PartitionCandidate& candidate : Engine.SourceDisk.Partitions) {
        LoadVolumeParams(candidate);
        LocateMft();
    }
}

void ScanAndRead(const std::function<void()>& scan) {
    KeepFilesInMemory();
    if (CreateCatalogue() != 0) {
        scan();
    }
    CloseCatalogue();
    OpenCatalogue();
    WalkAndRead();
}

void WalkAndRead() {
    WalkCatalogue();
    ReadContents();
    CloseCatalogue();
}

} // namespace thntfs::fuzz
