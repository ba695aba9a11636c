#include "content/SaveEntries.h"

#include "engine/LocateMft.h"
#include "scans/BasicScan.h"
#include "scans/ScanFixture.h"
#include "support/FailingFileStore.h"
#include "support/MemoryFile.h"

#include <filesystem>
#include <map>
#include <sys/resource.h>

namespace thntfs::test {

namespace {

namespace fs = std::filesystem;

struct KeptListener : SaveListener {
    void Renamed(const std::string&, const std::string&) override {}
    void Warned(const std::string&, const std::string&) override {}
    void Failed(const std::string& path, const std::string&) override { Paths.push_back(path); }
    std::vector<std::string> Paths;
};

/// A folder with so much room that takes all into one file, makes no folder, names no part that isn't synced
/// and can't be synced itself at a chosen call.
class FakeFolder final : public TargetFolder {
public:
    ErrorCode MakeSubfolder(const std::string&, std::unique_ptr<TargetFolder>&) override {
        return kErrorAccessDenied;
    }
    ErrorCode OpenSubfolder(const std::string&, std::unique_ptr<TargetFolder>&) override {
        return kErrorNone;
    }
    [[nodiscard]] bool Has(const std::string&) const override { return false; }
    ErrorCode CreateFile(const std::string&, std::unique_ptr<File>& file) override {
        file = Content.Open();
        return kErrorNone;
    }
    ErrorCode CreatePart(std::string& part, std::unique_ptr<File>& file) override {
        return CreateFile(part, file);
    }
    ErrorCode NamePart(const std::string&, const std::string&) override {
        return Content.Synced == Content.Content ? kErrorNone : kErrorInvalidParameter;
    }
    ErrorCode DeleteFile(const std::string&) override { return kErrorNone; }
    ErrorCode LinkFile(const std::string&, TargetFolder&, const std::string&) override {
        return kErrorAccessDenied;
    }
    void SetDates(const FileDates&) override {}
    bool KeepsHoles() override { return true; }
    [[nodiscard]] std::optional<std::uint64_t> FreeBytes() const override { return Room; }
    ErrorCode Sync() override { return ++Syncs == FailingSync ? kErrorDiskFull : kErrorNone; }

    MemoryFile Content;
    std::optional<std::uint64_t> Room;
    int Syncs = 0;
    int FailingSync = 0;
};

SavedFile FileOfMiB(const std::string& path) {
    SavedFile file;
    file.Path = path;
    file.Size = file.Bytes = 1U << 20U;
    file.Whole = true;
    return file;
}

using FileSizes = std::map<std::string, std::uintmax_t>;

class SaveEntriesTest : public ScanFixture {
protected:
    void Scan() {
        EXPECT_EQ(LocateMft(), 1);
        EXPECT_EQ(RunScan([] { return BasicScan(); }), 1);
    }
    SaveTotals ScanAndSave(const std::vector<std::string>& paths = {""}, bool deletedOnly = false) {
        Scan();
        SaveOptions options;
        options.Reach = deletedOnly ? SaveReach::DeletedOnly : SaveReach::All;
        std::unique_ptr<TargetFolder> target;
        EXPECT_EQ(TargetFolder::OpenTargetFolder(Target, true, target), kErrorNone);
        EntrySaver saver(std::move(target), Listener, options);
        SetFileStore(&Store);
        for (const std::string& path : paths) {
            saver.Save({FindEntries(path).front()});
        }
        const SaveTotals totals = saver.Finish();
        SetFileStore(nullptr);
        return totals;
    }
    FileSizes Saved() const {
        FileSizes files;
        for (const auto& entry : fs::recursive_directory_iterator(Target)) {
            if (entry.is_regular_file()) {
                files[entry.path().string().substr(Target.size())] = entry.file_size();
            }
        }
        return files;
    }

    KeptListener Listener;
    FailingFileStore Store;
    std::string Target = Engine.CatalogueFolder + "/target";
};

// Every call on the files fails in turn, the last ones before a name is given and the closing too.
TEST_F(SaveEntriesTest, WhatCarriesItsNameIsWholeAndTheRestIsNamed) {
    const FileSizes all = {{"/folder/big", 1500000}, {"/folder/small", 40000}, {"/tiny", 5}};
    Volume.AddFolder({.Number = 40, .Name = u"folder"});
    Volume.AddFile(
        {.Number = 41, .Parent = 40, .Name = u"big", .Content = PatternBytes(1500000), .InClusters = true});
    Volume.AddFile(
        {.Number = 42, .Parent = 40, .Name = u"small", .Content = PatternBytes(40000), .InClusters = true});
    Volume.AddFile({.Number = 43, .Name = u"tiny", .Content = BytesOf("hello")});
    for (std::uint64_t call = 1; call < 1000; ++call) {
        SCOPED_TRACE(call);
        fs::remove_all(Target);
        Listener.Paths.clear();
        Store.FailAt(call, kErrorDiskFull);
        const SaveTotals totals = ScanAndSave();
        const auto files = Saved();
        EXPECT_EQ(totals.Files, files.size());
        EXPECT_EQ(totals.Failed, Listener.Paths.size());
        auto expected = all;
        for (const std::string& path : Listener.Paths) {
            expected.erase(path);
        }
        EXPECT_EQ(files, expected);
        if (Store.Plan().Failures == 0) {
            EXPECT_GT(call, 10U);
            EXPECT_EQ(files, all);
            return;
        }
        EXPECT_EQ(totals.Failed, 1U);
    }
    FAIL() << "no end of calls";
}

TEST_F(SaveEntriesTest, WhatIsNotSyncedIsNotSaved) {
    FakeFolder folder;
    folder.FailingSync = 2;
    SaveAccount account(folder, Listener);
    for (int i = 0; i < 500; ++i) {
        account.FileWritten(FileOfMiB(std::to_string(i)));
    }
    const SaveTotals totals = account.Settle();
    EXPECT_EQ(totals.Failed, 128U) << "what was written meanwhile too";
    EXPECT_EQ(totals.Failed, Listener.Paths.size());
    EXPECT_EQ(totals.Damaged, 0U);
    EXPECT_LT(folder.Syncs, 10) << "64 MiB each";
    EXPECT_EQ(totals.Files + totals.Failed, 500U);
    EXPECT_EQ(totals.Bytes, totals.Files << 20U);
    account.FileWritten(FileOfMiB("last"));
    folder.FailingSync = folder.Syncs + 1;
    EXPECT_EQ(account.Settle().Failed, totals.Failed + 1);
    EXPECT_EQ(Listener.Paths.back(), "last");
}

TEST_F(SaveEntriesTest, RoomForTheFileIsEnoughAndAFolderFailsOnce) {
    Volume.AddFile({.Number = 40, .Name = u"plain", .Content = PatternBytes(40000), .InClusters = true});
    Volume.AddFile({.Number = 41, .Name = u"big", .Content = PatternBytes(1500000), .InClusters = true});
    Volume.AddFolder({.Number = 42, .Name = u"folder"});
    for (const std::uint32_t number : {43U, 44U}) {
        Volume.AddFile({.Number = number, .Parent = 42, .Name = u"f", .Content = BytesOf("text")});
        constexpr std::size_t kAllocatedAt = 40;
        RecordBuilder piece = Volume.NewRecord(number + 10);
        piece.SetBase(FileReference(45))
            .AddData({.Runs = {{2, 100}}, .FirstVcn = (number - 43) * 2, .RealSize = 40000});
        Volume.PlaceRecord(piece.Poke(piece.LastAttributeOffset() + kAllocatedAt, 8, 16384));
    }
    Volume.PlaceRecord(
        Volume.NewRecord(45)
            .AddStandardInformation()
            .AddAttributeList(std::vector<ListEntry>{{kFileName, 45}, {kData, 53}, {kData, 54, 2}})
            .AddFileName(NameIn(5, u"pieces")));
    Volume.PlaceRecord(Record(46, 5, u"cut").AddData({.Runs = {{2, 100}}, .RealSize = 40000}));
    Scan();
    for (const auto& [path, need] :
         {std::pair{"/plain", 40000U}, {"/big", 1500000U}, {"/cut", 8192U}, {"/pieces", 16384U}}) {
        for (const std::uint64_t room : {need, need - 1}) {
            auto folder = std::make_unique<FakeFolder>();
            folder->Room = room;
            EntrySaver saver(std::move(folder), Listener, {});
            saver.Save({FindEntries(path).front()});
            EXPECT_EQ(saver.Finish().Files, room == need ? 1U : 0U) << path;
        }
    }
    Listener.Paths.clear();
    EntrySaver saver(std::make_unique<FakeFolder>(), Listener, {});
    saver.Save({FindEntries("/folder").front()});
    EXPECT_EQ(Listener.Paths, (std::vector<std::string>{"/folder", "/folder/f", "/folder/f"}));
}

TEST_F(SaveEntriesTest, ALostFolderIsMadeForWhatIsInItAlone) {
    Volume.AddFile({.Number = 40, .Parent = 90, .Name = u"live", .Content = BytesOf("text")});
    EXPECT_EQ(ScanAndSave({""}, true).Folders, 0U);
    EXPECT_EQ(ScanAndSave().Folders, 1U);
}

TEST_F(SaveEntriesTest, AMediumThatIsGoneEndsAll) {
    Volume.PlaceRecord(Record(40, 5, u"first").AddData({.Runs = {{2, 1000}}, .RealSize = 8192}));
    Volume.AddFile({.Number = 41, .Name = u"second", .Content = BytesOf("text")});
    Plan->Rules = {{Volume.Geometry().SectorOf(1000), 1, kErrorNotReady}};
    EXPECT_EQ(ScanAndSave().Files, 0U);
    EXPECT_EQ(Listener.Paths, (std::vector<std::string>{"/first"}));
}

TEST_F(SaveEntriesTest, EachPathBeginsAtTheTarget) {
    for (const std::uint32_t number : {40U, 50U}) {
        const std::u16string name(1, static_cast<char16_t>(u'a' + number % 40));
        Volume.AddFolder({.Number = number, .Name = name});
        Volume.AddFile({.Number = number + 1, .Parent = number, .Name = u"f", .Content = BytesOf("text")});
    }
    EXPECT_EQ(ScanAndSave({"/a/f", "/k/f"}).Files, 2U);
    EXPECT_EQ(Saved(), (FileSizes{{"/a/f", 4}, {"/k/f", 4}}));
}

TEST_F(SaveEntriesTest, DeepPathsNeedFewDescriptors) {
    constexpr std::uint32_t kDepth = 105;
    std::uint32_t number = 40;
    std::uint32_t parent = 5;
    for (std::uint32_t depth = 0; depth < kDepth; ++depth, number += 2) {
        Volume.AddFolder({.Number = number, .Parent = parent, .Name = u"d"});
        Volume.AddFile({.Number = number + 1, .Parent = parent, .Name = u"f", .Content = BytesOf("text")});
        parent = number;
    }
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit few = {95, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    const SaveTotals totals = ScanAndSave();
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(totals.Files, kDepth);
    EXPECT_EQ(totals.Failed, 0U);
    EXPECT_EQ(Saved().size(), kDepth);
}

TEST_F(SaveEntriesTest, AStopEndsTheSearchForAFreeName) {
    Engine.ScanRunFlag = 1;
    NextNumbers numbers;
    std::string name = "name.txt";
    int tries = 0;
    EXPECT_EQ(TakeFreeName(numbers, name,
                           [&](const std::string&) {
                               Engine.ScanRunFlag = ++tries < 5 ? 1 : 0;
                               return tries < 1000 ? kErrorFileExists : kErrorNone;
                           }),
              kErrorFileExists);
    EXPECT_EQ(tries, 5);
}

} // namespace

} // namespace thntfs::test
