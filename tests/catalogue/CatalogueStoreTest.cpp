#include "catalogue/CatalogueFixture.h"
#include "catalogue/CatalogueReader.h"
#include "engine/FileWrites.h"
#include "platform/system/Text.h"
#include "support/FailingFileStore.h"

namespace thntfs::test {

namespace {

/// With which CreateCatalogue begins: each file opened, its size asked.
constexpr std::uint64_t kOpenCalls = 6;
constexpr std::uint64_t kReadCalls = 3; ///< at the end of WriteAndRead, names among them

class CatalogueStoreTest : public CatalogueFixture {};

/// Writes a small catalogue with lost folders and reads it back; false where a step failed.
bool WriteAndRead() {
    if (CreateCatalogue() == 0) {
        return false;
    }
    bool result = true;
    try {
        std::uint32_t id = kFirstEntryId;
        for (std::uint32_t number = 100; number < 140; ++number) {
            CatalogueEntry entry = {.EntryId = id++};
            AppendEntry(entry, std::u16string(200, u'n'));
            AddChild(*Engine.Folders->FindOrAddPlaceholder(number).Node, entry.EntryId);
        }
        FinishCatalogue(id);
    } catch (const CUserException&) {
        result = false;
    }
    CloseCatalogue();
    if (OpenCatalogue() == 0) {
        return false;
    }
    try {
        std::uint64_t bytes = 0;
        std::uint32_t count = 0;
        result = ListFolder(0, bytes, count, count, true).size() == 41 && result;
    } catch (const CUserException&) {
        result = false;
    }
    CloseCatalogue();
    return result;
}

} // namespace

TEST_F(CatalogueStoreTest, ANewCatalogueReplacesTheOldByItsSeeds) {
    EXPECT_TRUE(WriteAndRead());
    ASSERT_EQ(CreateCatalogue(), 1);
    EXPECT_TRUE(CatalogueIsOfVolumeInWork());
    EXPECT_EQ(Engine.NamesEnd, 12U);
    EXPECT_EQ(Engine.TreeEnd, 128U);
    FinishCatalogue(kFirstEntryId);
    CloseCatalogue();
    EXPECT_EQ(Engine.NamesEnd, 0U);
    EXPECT_EQ(Engine.Folders, nullptr);
    EXPECT_EQ(CloseCatalogue(), 1) << "closing what is closed";

    EXPECT_EQ(Stored(kNameFileName), (ByteVector{0x23, 0, 0x20, 0, 0x52, 0, 0x6F, 0, 0x6F, 0, 0x74, 0}));
    ByteVector tree(256);
    ApplyPokes(tree, {{8, 1, 1}, {128, 1, 5}});
    EXPECT_EQ(Stored(kTreeFileName), tree);
    ByteVector entries(88);
    ApplyPokes(entries, {{36, 1, 1}, {38, 1, 0x18}});
    ApplyPokes(entries, {{60, 1, 1}, {64, 1, 5}, {72, 1, 128}, {76, 1, 2}, {80, 1, 5}, {82, 1, 0x18}});
    EXPECT_EQ(Stored(kEntryFileName), entries);
}

TEST_F(CatalogueStoreTest, TheThirtyFirstChildBeginsABlock) {
    for (const std::uint32_t children : {30U, 61U}) {
        SCOPED_TRACE(children);
        HandWritten written;
        for (std::uint32_t i = 0; i < children; ++i) {
            written.AddFile(HandWritten::Root(), u"f");
        }
        written.Finish();
        EXPECT_EQ(Stored(kTreeFileName).size(), 128U * (1 + (children + 29) / 30));
        std::uint32_t child = kFirstEntryId;
        std::uint32_t offset = 128;
        for (std::uint32_t left = children; left > 0; left -= std::min(left, 30U)) {
            const FolderBlock block = StoredBlockAt(offset);
            EXPECT_EQ(block.OwnerNumber, 5U);
            for (std::uint32_t slot = 0; slot < 30; ++slot) {
                ASSERT_EQ(block.Slots.at(slot), slot < left ? child++ : 0U);
            }
            EXPECT_EQ(block.NextBlock, left > 30 ? offset + 128 : 0U);
            offset = block.NextBlock;
        }
    }
}

TEST_F(CatalogueStoreTest, LostFoldersComeInThePreOrderOfTheTree) {
    HandWritten written;
    // 0 with 5 to its right; 9 turns them to 5 over 0 and 9; the others hang below.
    for (const std::uint32_t number : {9U, 7U, 4000000000U, 3U}) {
        FolderIndexNode& folder = *Engine.Folders->FindOrAddPlaceholder(number).Node;
        if (number != 9) { // there was no memory for the chain of a folder, so that it has none and no child
            written.AddFile(folder, u"child");
        }
    }
    written.Finish();
    std::uint32_t id = 5;
    for (const std::uint32_t number : {3U, 9U, 7U, 4000000000U}) {
        const CatalogueEntry entry = StoredEntryAt(id);
        EXPECT_EQ(entry.EntryId, id);
        EXPECT_EQ(entry.RecordNumber, number);
        EXPECT_EQ(entry.Flags, kFlagFolder);
        EXPECT_EQ(entry.Size + entry.RecordSector + entry.ParentNumber + entry.CreatedDate +
                      entry.AccessedDate,
                  0U);
        const FolderBlock block = StoredBlockAt(entry.BlockOffset);
        EXPECT_EQ(block.OwnerNumber, number);
        EXPECT_EQ(block.Slots[0] != 0, number != 9);
        EXPECT_EQ(LoadEntry(id)->Name, u"#" + WideText(std::to_string(number)));
        EXPECT_EQ(StoredBlockAt(0).Slots.at(id - 4), id);
        ++id;
    }
    EXPECT_EQ(StoredBlockAt(0).Slots[0], 1U) << "the root";
}

TEST_F(CatalogueStoreTest, WriteCatalogueTakesTwoCodesForSuccess) {
    FailingFileStore store;
    std::unique_ptr<File> file;
    ASSERT_EQ(store.Open(Engine.CatalogueFolder + "/out", FileMode::CreateAlways, file), kErrorNone);
    EXPECT_EQ(WriteCatalogue(*file, ByteVector(4)), 1);
    store.FailAt(1, kErrorInvalidUserBuffer);
    EXPECT_EQ(WriteCatalogue(*file, ByteVector(4)), 1);
    EXPECT_TRUE(Reports.Boxes.empty());
    store.FailAt(1, kErrorDiskFull);
    EXPECT_THROW(WriteCatalogue(*file, ByteVector(4)), CUserException);
    EXPECT_EQ(Reports.Boxes, std::vector<std::string>{"There is not enough space on the disk."});
}

TEST_F(CatalogueStoreTest, NoFileGrowsBeyondItsOffsets) {
    HandWritten written;
    Engine.NamesEnd = static_cast<std::uint32_t>(kMaxCatalogueFileBytes - 8);
    written.AddFile(HandWritten::Root(), u"1234");
    EXPECT_THROW(written.AddFile(HandWritten::Root(), u"5"), CUserException);
}

TEST_F(CatalogueStoreTest, AStoreThatFailsAtAnyCallIsReported) {
    FailingFileStore store;
    SetFileStore(&store);
    ASSERT_TRUE(WriteAndRead());
    const std::uint64_t calls = store.Plan().Calls;
    for (const bool failOn : {false, true}) {
        for (std::uint64_t call = 1; call <= calls; ++call) {
            SCOPED_TRACE(testing::Message() << "call " << call << (failOn ? " and all after it" : ""));
            store.FailAt(call, kErrorDiskFull, failOn);
            const bool result = WriteAndRead();
            EXPECT_GE(store.Plan().Failures, 1U);
            EXPECT_FALSE(result && call <= calls - kReadCalls)
                << "a name that can't be read would do no harm";
            EXPECT_EQ(Engine.TreeFile, nullptr);
            EXPECT_EQ(Engine.Folders, nullptr);
        }
    }
    // A disk that is full shows at once, not at the end of a scan.
    for (std::uint64_t file = 1; file <= 3; ++file) {
        store.FailAt(kOpenCalls + file);
        Reports.Boxes.clear();
        EXPECT_EQ(CreateCatalogue(), 0) << file;
        EXPECT_FALSE(CatalogueIsOfVolumeInWork());
        EXPECT_EQ(Reports.Boxes.size(), 1U);
    }
    store.FailAt(0);
    EXPECT_TRUE(WriteAndRead()) << "nothing lasts";
    SetFileStore(nullptr);
    Engine.CatalogueFolder += "/missing";
    EXPECT_EQ(CreateCatalogue(), 0);
    EXPECT_EQ(OpenCatalogue(), 0);
}

TEST_F(CatalogueStoreTest, AFailureThatPassesCostsNothing) {
    FailingFileStore store;
    SetFileStore(&store);
    HandWritten written;
    written.AddFile(HandWritten::Root(), u"kept");
    store.FailAt(1);
    EXPECT_THROW(FinishCatalogue(3), CUserException);
    EXPECT_EQ(Stored(kEntryFileName).size(), 132U) << "the other files are written all the same";
    CloseCatalogue();
    EXPECT_EQ(StoredBlockAt(128).Slots[0], 2U);
}

// Once as it should be, once on a disk that fills up then.
TEST_F(CatalogueStoreTest, ChainsOfACatalogueThatOutgrowsItsBuffers) {
    constexpr std::uint32_t kBlocks = (32U << 20U) / kStoredBlockBytes;
    for (const bool fills : {false, true}) {
        FailingFileStore store;
        SetFileStore(&store);
        ASSERT_EQ(CreateCatalogue(), 1);
        std::uint32_t number = 100;
        const auto addFolder = [&number] {
            BeginFolderBlock(*Engine.Folders->FindOrAddFolder(number++).Node);
        };
        while (number < 100 + kBlocks) {
            addFolder();
        }
        FolderIndexNode& first = *Engine.Folders->FindFolder(100);
        std::vector<std::uint32_t> children;
        for (std::uint32_t id = 1000; id < 1070; ++id) {
            AddChild(first, id);
            AddChild(*Engine.Folders->FindFolder(100 + id * 17), id);
            children.push_back(id);
        }
        if (fills) {
            store.Plan().RoomInFile = (32U << 20U) + 65536;
            EXPECT_THROW(
                while (number < 3 * kBlocks) { addFolder(); }, CUserException);
        }
        const std::uint32_t start = first.BlockOffset;
        const std::uint32_t other = Engine.Folders->FindFolder(100 + 1003 * 17)->BlockOffset;
        if (fills) {
            EXPECT_THROW(FinishCatalogue(2), CUserException);
        } else {
            FinishCatalogue(2);
        }
        CloseCatalogue();
        ASSERT_EQ(OpenCatalogue(), 1);
        ChildWalk walk(start);
        for (const std::uint32_t child : children) {
            ASSERT_EQ(walk.Next(), child);
        }
        EXPECT_EQ(walk.Next(), 0U);
        EXPECT_EQ(ChildWalk(other).Next(), 1003U);
        CloseCatalogue();
    }
}

} // namespace thntfs::test
