#include "catalogue/CatalogueReader.h"

#include "catalogue/CatalogueFixture.h"
#include "catalogue/CatalogueTotals.h"
#include "catalogue/EntryWalk.h"
#include "catalogue/FindEntry.h"
#include "support/FailingFileStore.h"

namespace thntfs::test {

namespace {

using Ids = std::vector<std::uint32_t>;
using Paths = std::vector<std::string>;

class CatalogueReaderTest : public CatalogueFixture {
protected:
    /// Puts a word into a file of the closed catalogue and opens it.
    static void Damage(const char* name, std::uint64_t offset, std::uint32_t word) {
        CloseCatalogue();
        ByteVector bytes = Stored(name);
        PutNumber(bytes, offset, word);
        WriteFileBytes(Engine.CatalogueFolder + name, bytes);
        ASSERT_EQ(OpenCatalogue(), 1);
    }

    Ids List(std::uint32_t block, bool keepFiles = true) {
        Ids ids;
        for (const CatalogueItem& item : ListFolder(block, Bytes, Files, Folders, keepFiles)) {
            ids.push_back(item.EntryId);
        }
        return ids;
    }

    /// Paths of a walk, by both reaches. What a walk over the whole meets is what the totals count.
    static Paths WalkAll(const WalkStart& start = {}) {
        Paths paths;
        for (const WalkReach reach : {WalkReach::Part, WalkReach::Whole}) {
            Paths found;
            EntryWalk walk(start, reach);
            while (walk.Next()) {
                found.push_back(walk.Path());
            }
            EXPECT_FALSE(walk.Next());
            EXPECT_TRUE(paths.empty() || found == paths);
            paths = found;
        }
        if (start.IsTop) {
            const CatalogueTotals totals = CountCatalogue();
            EXPECT_EQ(totals.Files + totals.Folders, paths.size());
        }
        return paths;
    }

    std::uint64_t Bytes = 0;
    std::uint32_t Files = 0;
    std::uint32_t Folders = 0;
};

} // namespace

TEST_F(CatalogueReaderTest, LoadsEveryField) {
    HandWritten written;
    CatalogueEntry entry = {0x1122334455667788, 0x99AABBCCDDEE, 2, 3, 4, 5, 0, 0, 0x0829, 7, 8};
    AppendEntry(entry, u"n\u00E4me");
    written.Finish();
    const auto item = LoadEntry(2);
    EXPECT_EQ(item->Size, 0x1122334455667788U);
    EXPECT_EQ(item->RecordSector, 0x99AABBCCDDEEU);
    EXPECT_EQ((Ids{item->EntryId, item->RecordNumber, item->ParentNumber, item->BlockOffset, item->Flags,
                   item->CreatedDate, item->AccessedDate, item->NameLength}),
              (Ids{2, 3, 4, 5, 0x0829, 7, 8, 4}));
    EXPECT_EQ(item->Name, u"n\u00E4me");
    EXPECT_EQ(CatalogueEntryCount(), 3U);
    const auto behind = LoadEntry(3);
    EXPECT_EQ(behind->EntryId + behind->Flags + behind->NameLength + behind->Name.size(), 0U);
    EXPECT_NE(LoadEntry(0xFFFFFFFF), nullptr);

    CatalogueItem kept;
    EXPECT_EQ(LoadEntryInto(0, kept) + LoadEntryInto(1, kept), 2);
    EXPECT_EQ(kept.Name, u" Root");

    // Names that the file doesn't hold.
    ByteVector names = Stored(kNameFileName);
    AppendText(names, std::u16string(300, u'b'));
    CloseCatalogue();
    WriteFileBytes(Engine.CatalogueFolder + kNameFileName, names);
    Damage(kEntryFileName, 2 * 44 + 36, 0xFFFF);
    EXPECT_EQ(LoadEntry(2)->Name, u"n\u00E4me" + std::u16string(300, u'b'));
    EXPECT_EQ(LoadEntry(2)->NameLength, 0xFFFF);
    Damage(kEntryFileName, 2 * 44 + 32, 0xFFFFFFF0);
    EXPECT_EQ(LoadEntry(2)->Name, u"");
    EXPECT_TRUE(Reports.Boxes.empty());
    CloseCatalogue();
    EXPECT_EQ(LoadEntry(0), nullptr);
    EXPECT_EQ(CatalogueEntryCount(), 0U);
}

TEST_F(CatalogueReaderTest, ListsFilesThenFoldersEachInReverse) {
    HandWritten written;
    Ids files;
    Ids folders;
    for (std::uint32_t id = 2; id < 42; ++id) {
        if (id % 4 == 1) {
            written.AddFolder(HandWritten::Root(), 100 + id, u"folder");
            folders.insert(folders.begin(), id);
        } else {
            written.AddFile(HandWritten::Root(), u"file", 0xFFFFFFFF);
            files.insert(files.begin(), id);
        }
    }
    written.Finish();
    Ids expected = files;
    expected.insert(expected.end(), folders.begin(), folders.end());
    Files = 7;
    EXPECT_EQ(List(128), expected);
    EXPECT_EQ(Bytes, 30 * std::uint64_t{0xFFFFFFFF});
    EXPECT_EQ(Files, 37U) << "counters are added to";
    EXPECT_EQ(Folders, 10U);
    EXPECT_EQ(List(128, false), folders);
    EXPECT_EQ(Files, 67U);
    EXPECT_EQ(Bytes, 60 * std::uint64_t{0xFFFFFFFF});
    EXPECT_TRUE(List(StoredEntryAt(5).BlockOffset).empty());
    EXPECT_EQ(Folders, 20U);
    EXPECT_EQ(List(0), (Ids{1}));

    Damage(kTreeFileName, 128 + 8 + 4 * 5, 0); // a free slot in the middle
    EXPECT_EQ(List(128).size(), 39U);
    EXPECT_TRUE(List(0x7FFFFF80).empty()) << "behind the end of TreeFile";
}

TEST_F(CatalogueReaderTest, BlocksAndEntriesThatCannotBeRead) {
    HandWritten written;
    written.AddFile(HandWritten::Root(), u"file");
    written.AddFile(HandWritten::Root(), u"other");
    written.Finish();
    CloseCatalogue();
    FailingFileStore store;
    SetFileStore(&store);
    ASSERT_EQ(OpenCatalogue(), 1);
    store.FailAt(1, kErrorCrc);
    EXPECT_THROW(List(128), CUserException);
    EXPECT_EQ(Reports.Boxes.size(), 1U);
    store.FailAt(2, kErrorCrc);
    EXPECT_EQ(List(128), (Ids{3})) << "the entry is left out, the listing goes on";
    EXPECT_EQ(Reports.Boxes.size(), 2U);
    EXPECT_EQ(List(128), (Ids{3, 2}));
    ASSERT_EQ(OpenCatalogue(), 1);
    store.FailAt(2, kErrorCrc);
    EntryWalk walk({128, "", false});
    EXPECT_TRUE(walk.Next());
    EXPECT_EQ(walk.Path(), "/other");
}

TEST_F(CatalogueReaderTest, WalksDepthFirst) {
    HandWritten written;
    FolderIndexNode& one = written.AddFolder(HandWritten::Root(), 100, u"one"); // 2
    written.AddFile(HandWritten::Root(), u"last");
    FolderIndexNode& deep = written.AddFolder(one, 101, u"deep");
    written.AddFile(deep, u"x");
    written.AddFile(one, u"y");
    FolderIndexNode& lost = *Engine.Folders->FindOrAddPlaceholder(300).Node;
    BeginFolderBlock(lost);
    written.AddFile(lost, u"z");
    written.AddFile(HandWritten::Top(), u"topfile");
    written.Finish();
    EXPECT_EQ(WalkAll(), (Paths{"", "/one", "/one/deep", "/one/deep/x", "/one/y", "/last", "topfile", "#300",
                                "#300/z"}));
    EXPECT_EQ(WalkAll({StoredEntryAt(2).BlockOffset, "/one", false}),
              (Paths{"/one/deep", "/one/deep/x", "/one/y"}));

    for (const WalkReach reach : {WalkReach::Part, WalkReach::Whole}) {
        EntryWalk walk({}, reach);
        ASSERT_TRUE(walk.Next());
        EXPECT_EQ(walk.Depth(), 0U);
        walk.SkipFolder();
        for (const char* path : {"topfile", "#300", "#300/z"}) {
            ASSERT_TRUE(walk.Next());
            EXPECT_EQ(walk.Path(), path);
        }
    }
}

TEST_F(CatalogueReaderTest, CirclesEnd) {
    HandWritten written;
    FolderIndexNode& one = written.AddFolder(HandWritten::Root(), 100, u"one"); // 2, block 256
    FolderIndexNode& two = written.AddFolder(one, 101, u"two");                 // 3, block 384
    written.AddFile(two, u"x");                                                 // 4
    written.AddFile(HandWritten::Root(), u"last");                              // 5
    written.Finish();
    const Paths whole = {"", "/one", "/one/two", "/one/two/x", "/last"};
    Damage(kTreeFileName, 384 + 12, 2); // the inner folder holds the outer one
    EXPECT_EQ(WalkAll(), whole);
    Damage(kTreeFileName, 384 + 4, 256); // and its chain leads into the outer one's
    EXPECT_EQ(WalkAll(), whole);
    Damage(kTreeFileName, 128 + 4, 128); // a block that follows itself
    EXPECT_EQ(WalkAll(), whole);
    EXPECT_LE(List(128).size(), 40U);
    EXPECT_FALSE(FindEntries("/one/two/x").empty());
    EXPECT_TRUE(FindEntries("/one/two/x/one").empty());
    Damage(kTreeFileName, 256 + 12, 0xFFFFFFFF); // no such entry
    EXPECT_EQ(WalkAll(), whole);
    Damage(kTreeFileName, 256 + 12, 2); // the outer folder holds itself, twice
    Damage(kTreeFileName, 256 + 16, 2);
    std::string path;
    for (int i = 0; i < 40; ++i) {
        path += "/one";
    }
    EXPECT_EQ(FindEntries(path).size(), 2U);
    Damage(kTreeFileName, 8, 2); // the root is gone from the top and stands in the inner folder
    Damage(kTreeFileName, 384 + 16, 1);
    Damage(kTreeFileName, 384 + 20, 5);
    Damage(kTreeFileName, 128 + 12, 0);
    EXPECT_EQ(WalkAll(), (Paths{"one", "one/two", "one/two/x", "one/two/ Root", "one/two/last"}));
}

TEST_F(CatalogueReaderTest, FindsAllEntriesOfAPath) {
    HandWritten written;
    FolderIndexNode& first = written.AddFolder(HandWritten::Root(), 100, u"a");  // 2
    FolderIndexNode& second = written.AddFolder(HandWritten::Root(), 101, u"a"); // 3
    written.AddFile(first, u"x");                                                // 4
    written.AddFile(second, u"x");                                               // 5
    written.AddFile(HandWritten::Root(), u"a/x");                                // 6
    FolderIndexNode& slashed = written.AddFolder(first, 102, u"b/c");            // 7
    written.AddFile(slashed, u"d");                                              // 8
    FolderIndexNode& lost = written.AddFolder(HandWritten::Top(), 103, u"#9");   // 9
    written.AddFile(lost, u"\u00E4");                                            // 10
    written.AddFile(written.AddFolder(second, 104, u""), u"x");                  // 11, 12
    written.Finish();
    const auto ids = [](std::string_view path) {
        Ids found;
        for (const LocatedEntry& entry : FindEntries(path)) {
            found.push_back(entry.Item.EntryId);
        }
        return found;
    };
    EXPECT_EQ(ids(""), (Ids{0}));
    EXPECT_EQ(ids("/"), (Ids{1}));
    EXPECT_EQ(ids("/a"), (Ids{2, 3}));
    EXPECT_EQ(ids("/a/"), (Ids{2, 3}));
    EXPECT_EQ(ids("/a/x"), (Ids{4, 5, 6}));
    EXPECT_EQ(ids("/a/b/c/d"), (Ids{8}));
    EXPECT_EQ(ids("#9"), (Ids{9}));
    EXPECT_EQ(ids("#9/\xC3\xA4"), (Ids{10}));
    EXPECT_EQ(ids("/a/x/"), (Ids{4, 5, 6}));
    for (const char* none : {"/A", "a", "/a/x/y", "//a", "/#9", "/a//x", "x", " Root", "/a/x/#9"}) {
        EXPECT_EQ(ids(none), Ids{}) << none;
    }
    const auto found = FindEntries("/a/b/c/d/");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].Path, "/a/b/c/d");
    ASSERT_EQ(found[0].Folders.size(), 2U);
    EXPECT_EQ(found[0].Folders[0].Name + found[0].Folders[1].Name, u"ab/c");
    EXPECT_EQ(FindEntries("/a/x")[1].Folders.size(), 1U);
    EXPECT_EQ(WalkAll(StartAt(FindEntries("/")[0])).front(), "/a");
    EXPECT_EQ(WalkAll(StartAt(FindEntries("")[0])), WalkAll());
    EXPECT_EQ(WalkAll(StartAt(FindEntries("/a/b/c")[0])), Paths{"/a/b/c/d"});
}

TEST_F(CatalogueReaderTest, PathsLongerThanNtfsAllowsAreNotFollowed) {
    HandWritten written;
    FolderIndexNode* parent = &HandWritten::Root();
    for (std::uint32_t i = 0; i < 500; ++i) {
        parent = &written.AddFolder(*parent, 100 + i, std::u16string(199, u'n'));
    }
    written.Finish();
    EXPECT_EQ(WalkAll().size(), 1U + 98301 / 200 + 1);
}

TEST_F(CatalogueReaderTest, CountsFilesAndFolders) {
    HandWritten written;
    FolderIndexNode& gone = written.AddFolder(HandWritten::Root(), 100, u"gone", false, 7);
    written.AddFile(gone, u"x", 5'000'000'000);
    written.AddEntry(gone, {.RecordNumber = 9}, u"deleted");
    written.AddFile(*Engine.Folders->FindOrAddPlaceholder(300).Node, u"z");
    written.Finish();
    const CatalogueTotals totals = CountCatalogue();
    EXPECT_EQ(totals.Bytes, 5'000'000'007U);
    const std::vector<std::uint64_t> counts = {totals.Files, totals.Folders, totals.DeletedFiles,
                                               totals.DeletedFolders, totals.LostFolders};
    EXPECT_EQ(counts, (std::vector<std::uint64_t>{3, 3, 1, 2, 1}));
}

} // namespace thntfs::test
