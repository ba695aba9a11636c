#include "content/ZipFolder.h"

#include "SaveFixture.h"
#include "content/ZipArchive.h"
#include "engine/LittleEndian.h"
#include "platform/files/File.h"

#include <random>
#include <set>

namespace thntfs::test {

namespace {

class ZipFolderTest : public SaveFixture {
protected:
    void AddFiles() {
        const FileTimes times = EqualTimes(132223104001234567);
        Volume.AddFolder({.Number = 40, .Name = u"Übersee", .Times = times});
        Volume.AddFolder(
            {.Number = 41, .Parent = 40, .Name = u"leer", .Times = EqualTimes(122223104001234567)});
        Volume.PlaceRecord(Volume.NewRecord(42)
                               .AddStandardInformation(times)
                               .AddFileName(NameIn(40, u"日本.txt"))
                               .AddFileName(NameIn(41, u"again.txt"))
                               .AddData(BytesOf("two names"))
                               .AddData(BytesOf("a stream"), u"note"));
        ByteVector noise(400000);
        std::generate(noise.begin(), noise.end(), std::mt19937(1));
        Volume.AddFile({.Number = 43, .Name = u"zeros", .Content = ByteVector(1500000), .InClusters = true});
        Volume.AddFile({.Number = 44, .Parent = 40, .Name = u"noise", .Content = noise, .InClusters = true});
        Volume.AddFile({.Number = 45, .Name = u"empty"});
        Volume.AddFile({.Number = 46, .Name = u"empty", .Live = false});
        const std::uint64_t start = Volume.AllocateClusters(1);
        Volume.PutClusters(start, PatternBytes(4096));
        Volume.PlaceRecord(
            Record(47, 5, u"holes")
                .AddData({.Runs = {{300, std::nullopt}, {1, start}, {600, std::nullopt}}, .Flags = 0x8000}));
        Scan();
        LooseBytes = SaveLoose(kWithStreams).Bytes;
        All = Saved();
        EXPECT_EQ(All.size(), 10U);
    }
    /// Either the archive is there, and holds what nobody was told to have failed, whole; or there is none.
    SaveTotals SaveZip() {
        fs::remove(Zip);
        SetFileStore(&Store);
        std::unique_ptr<TargetFolder> target;
        SaveTotals totals;
        if (OpenZipFolder(Zip, target) == kErrorNone) {
            totals = SaveAllTo(std::move(target), kWithStreams);
            EXPECT_EQ(totals.Failed, Listener->Failures);
        }
        SetFileStore(nullptr);
        for (const auto& entry : fs::directory_iterator(Engine.CatalogueFolder)) {
            EXPECT_NE(entry.path().extension(), ".part");
        }
        std::uint64_t files = 0;
        for (const auto& [path, item] : fs::exists(Zip) ? ReadZip(Zip) : ZipItems()) {
            files += path.ends_with('/') ? 0 : 1;
            EXPECT_TRUE(item == All.at(path)) << path;
        }
        EXPECT_EQ(files, totals.Files + totals.Links + totals.Streams);
        EXPECT_TRUE(fs::exists(Zip) || totals.Folders == 0);
        return totals;
    }

    const SaveOptions kWithStreams{.Streams = true};
    FailingFileStore Store;
    std::string Zip = Engine.CatalogueFolder + "/saved.zip";
    std::uint64_t LooseBytes = 0;
    ZipItems All; ///< what a save to a folder gives
};

TEST_F(ZipFolderTest, HoldsWhatASaveToAFolderHoldsAlsoWhereItsTargetFails) {
    AddFiles();
    EXPECT_EQ(SaveZip().Bytes, LooseBytes);
    EXPECT_EQ(PathsIn(ReadZip(Zip)), PathsIn(All));
    EXPECT_LT(fs::file_size(Zip), 450000U) << "zeros take hardly any room, noise its own";
    std::set<std::uint64_t> counts;
    for (std::uint64_t half = 2; half < 4 || Store.Plan().Failures != 0; ++half) {
        ASSERT_LT(half, 2000U);
        Store.FailAt(half / 2, kErrorDiskFull, half % 2 != 0);
        counts.insert(SaveZip().Files);
    }
    EXPECT_GT(counts.size(), 4U) << "more and more of it";
    Store.FailAt(0);
    for (Store.Plan().RoomInFile = 200; Store.Plan().RoomInFile < 450000; Store.Plan().RoomInFile *= 2) {
        (void)SaveZip();
    }
    for (StopAt = 1; StopAt < 4; ++StopAt) {
        EXPECT_TRUE(SaveZip().Stopped);
    }
}

TEST_F(ZipFolderTest, NothingThatExistsIsWrittenOver) {
    AddFiles();
    WriteFileBytes(Zip, BytesOf("mine"));
    std::unique_ptr<TargetFolder> target;
    EXPECT_EQ(OpenZipFolder(Zip, target), kErrorFileExists);
    EXPECT_NE(OpenZipFolder(Target + "/none/a.zip", target), kErrorNone);
    fs::remove(Zip);
    ASSERT_EQ(OpenZipFolder(Zip, target), kErrorNone);
    WriteFileBytes(Zip, BytesOf("mine"));
    EXPECT_EQ(SaveAllTo(std::move(target)).Failed, 0U);
    EXPECT_EQ(ReadFileBytes(Zip), BytesOf("mine"));
    EXPECT_EQ(ReadZip(Engine.CatalogueFolder + "/saved (2).zip").size(), 9U);
    fs::remove(Zip);
    ASSERT_EQ(OpenZipFolder(Zip, target), kErrorNone);
    EXPECT_EQ(target->Sync(), kErrorNone);
    EXPECT_FALSE(fs::exists(Zip)) << "nothing went into it";
    ASSERT_EQ(OpenZipFolder(Zip, target), kErrorNone);
    std::unique_ptr<File> file;
    ASSERT_EQ(target->CreateFile("huge", file), kErrorNone);
    EXPECT_EQ(file->WriteAt(std::uint64_t{1} << 41U, BytesOf("x")), kErrorFileTooLarge);
    EXPECT_EQ(target->CreateFile("huge", file), kErrorFileExists);
    std::unique_ptr<TargetFolder> folder;
    EXPECT_EQ(target->MakeSubfolder("huge", folder), kErrorFileExists);
    target.reset();
    EXPECT_EQ(SaveZip().Failed, 0U);
}

// More entries than 16 bits count; two are dropped, one of them the last.
TEST_F(ZipFolderTest, DroppedEntriesAreNotInTheDirectory) {
    std::unique_ptr<File> file;
    ASSERT_EQ(Files().Open(Zip, FileMode::CreateNew, file), kErrorNone);
    std::uint64_t room = ~std::uint64_t{0};
    ZipArchive archive(*file, [&room] { return room; });
    for (int i = 0; i <= 65600; ++i) {
        ASSERT_EQ(archive.Begin({.Path = std::to_string(i), .Stored = true, .Size = 5}), kErrorNone);
        ASSERT_EQ(archive.Add(BytesOf("bytes")), kErrorNone);
        if (i == 3) {
            archive.Drop();
            continue;
        }
        room = i < 65600 ? room : 8 << 20U; // the directory needs more than 7 MiB
        ASSERT_EQ(archive.End(), i < 65600 ? kErrorNone : kErrorDiskFull);
    }
    archive.Drop();
    EXPECT_EQ(archive.Begin({.Path = "late"}), kErrorDiskFull);
    ASSERT_EQ(archive.Finish(), kErrorNone);
    const ZipItems items = ReadZip(Zip);
    EXPECT_EQ(items.size(), 65599U);
    const ByteVector bytes = ReadFileBytes(Zip);
    EXPECT_EQ(U64At(bytes, bytes.size() - 74), 65599U) << "as the directory's end tells";
    EXPECT_TRUE(!items.contains("3") && items.contains("4") && !items.contains("65600"));
    EXPECT_EQ(items.at("4").Bytes + items.at("65599").Bytes, "bytesbytes");
}

} // namespace

} // namespace thntfs::test
