// A disk that this user may not open, and a host that has it opened.

#include "platform/media/LentDisk.h"

#include "disktools/CloneTarget.h"
#include "engine/EngineState.h"
#include "partitions/OpenSource.h"
#include "platform/files/File.h"
#include "platform/media/TargetDisk.h"
#include "support/EngineFixture.h"
#include "support/LoopDevice.h"
#include "support/RunProgram.h"
#include "support/VolumeBuilderMedium.h"

#include <fcntl.h>
#include <unistd.h>

namespace thntfs::test {
namespace {

class LendingHost : public EngineHost {
public:
    DiskAnswer AskForDisk(const std::string& path, DiskUse use) override {
        const bool reads = use == DiskUse::Reading;
        Told += reads ? "read? " : "write? ";
        if (Refusal != kErrorNone) {
            return {{}, Refusal, "no!"};
        }
        EXPECT_EQ(::seteuid(0), 0);
        FileDescriptor disk = OpenDescriptor(path.c_str(), (reads ? O_RDONLY : O_RDWR) | OpenFlagsOf(use));
        EXPECT_EQ(::seteuid(65534), 0);
        FileDescriptor turns = DuplicateOf(disk.Get());
        Turns = turns.Get();
        return {std::move(disk), kErrorNone, {}, std::move(turns)};
    }
    void LogEvent(const ProcessLogEntry& entry) override { Told += entry.Description + " "; }

    ErrorCode Refusal = kErrorNone;
    std::string Told;
    int Turns = -1;
};

TEST(LentDiskTest, AHostIsAskedForDisksAndOnceForATarget) {
    const ScratchFolder scratch;
    const ByteVector pattern = PatternBytes(1U << 20U);
    WriteFileBytes(scratch / "image", pattern);
    const auto loop = LoopDevice::Attach(scratch / "image");
    if (loop == nullptr) {
        GTEST_SKIP() << "no loop device here";
    }
    LendingHost host;
    SetHost(&host);
    ASSERT_EQ(::seteuid(65534), 0);
    EXPECT_EQ(OpenSource(scratch / "image"), kErrorAccessDenied);
    EXPECT_EQ(host.Told, "") << "a file is no disk";
    ByteVector bytes(pattern.size());
    EXPECT_EQ(OpenSource(loop->Path()), kErrorNone);
    EXPECT_EQ(Engine.SourceDisk.MediaHandle->ReadAt(0, bytes), kErrorNone);
    EXPECT_EQ(bytes, pattern);
    EXPECT_EQ(Engine.SourceDisk.MediaHandle->Lent()->Turns.Get(), host.Turns);
    CloneTarget target(loop->Path());
    EXPECT_TRUE(target.Look().Allowed());
    EXPECT_EQ(target.SizeBytes(), pattern.size());
    EXPECT_EQ(target.OpenContents()->ReadAt(0, bytes), kErrorNone);
    EXPECT_TRUE(target.Open().Allowed());
    EXPECT_EQ(host.Told, "read? for reading write? for writing ");
    EXPECT_EQ(Engine.TargetDisk.WriteHandle->WriteAt(512, ByteVector(512, 7)), kErrorNone);
    for (const ErrorCode code :
         {kErrorCancelled, kErrorPrivilegeNotHeld, kErrorServiceNotActive, kErrorAccessDenied}) {
        host.Refusal = code;
        host.Told.clear();
        EXPECT_EQ(CloneTarget(loop->Path()).Look().Code, code);
        EXPECT_EQ(host.Told, "write? no! ");
        EXPECT_EQ(OpenFailureLines(loop->Path(), code).size(), 2U) << "there is a way on from " << code;
    }
    EXPECT_EQ(::seteuid(0), 0);
    std::unique_ptr<File> second;
    EXPECT_EQ(OpenTargetDisk(loop->Path(), second), kErrorSharingViolation) << "it is the target's alone";
    EXPECT_EQ(OpenTargetDiskOn(OpenDescriptor(loop->Path().c_str(), O_RDONLY), loop->Path(), second),
              kErrorInvalidHandle);
    EXPECT_EQ(OpenMedium(loop->Path()).Handle->ReadAt(0, bytes), kErrorNone);
    EXPECT_EQ(bytes[512], 7);
    ResetEngineState();
    SetHost(nullptr);
}

} // namespace
} // namespace thntfs::test
