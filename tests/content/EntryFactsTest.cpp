#include "content/EntryFacts.h"

#include "catalogue/Catalogue.h"
#include "catalogue/CatalogueFixture.h"
#include "content/ContentFixture.h"

namespace thntfs::test {

namespace {

class EntryFactsTest : public ContentFixture {
protected:
    EntryFactsTest() {
        EXPECT_EQ(folder_.Create(), kErrorNone);
        Engine.CatalogueFolder = folder_.Path();
        Engine.ScanRunFlag = 0;
        HandWritten catalogue;
        FolderIndexNode& outer = catalogue.AddFolder(HandWritten::Root(), 30, u"outer");
        catalogue.AddFolder(outer, 31, u"inner");
        Engine.Folders->FindOrAddPlaceholder(32); // becomes "#32"
        catalogue.Finish();
    }
    ~EntryFactsTest() override {
        CloseCatalogue();
        Engine.CatalogueFolder.clear();
    }

    EntryFacts FactsOf(std::uint32_t parent, std::uint64_t size = 0, unsigned steps = ~0U) {
        CatalogueItem item = ItemOf(40, size);
        item.RecordNumber = 40;
        item.ParentNumber = parent;
        item.EntryId = 50;
        item.Name = u"file";
        item.Flags = kFlagLive;
        return GatherEntryFacts(item, [&steps] { return steps-- != 0; });
    }

private:
    WorkFolder folder_;
};

} // namespace

TEST_F(EntryFactsTest, AllThatARecordTells) {
    const FileTimes times{1, 2, 3, 4};
    Volume.PlaceRecord(Volume.NewRecord(40)
                           .AddStandardInformation(times, 0x2022)
                           .AddFileName(NameIn(31, u"file"))
                           .AddFileName(NameIn(31, u"FILE~1", kNamespaceDos))
                           .AddFileName(NameIn(32, u"link"))
                           .AddFileName(NameIn(77, u"lost"))
                           .AddData({.Runs = {{2, 500}, {3, {}}, {1, 90}}})
                           .AddData(BytesOf("abc"), u"side"));
    const EntryFacts facts = FactsOf(31, 6 * 4096);
    EXPECT_TRUE(facts.RecordRead);
    EXPECT_EQ(facts.Path, "/outer/inner/file");
    EXPECT_EQ(facts.Names, (std::vector<std::string>{"/outer/inner/file", "#32/link", "?/lost"}));
    EXPECT_EQ(
        std::tuple(facts.Times.Created, facts.Times.Modified, facts.Times.Changed, facts.Times.Accessed),
        std::tuple(1U, 2U, 3U, 4U));
    EXPECT_EQ(facts.AttributeBits, 0x2022U);
    ASSERT_EQ(facts.Streams.size(), 1U);
    EXPECT_EQ(facts.Streams[0].Name, u"side");
    EXPECT_EQ(facts.Streams[0].Size, 3U);
    ASSERT_TRUE(facts.Data);
    EXPECT_EQ(std::tuple(facts.Data->InRecord, facts.Data->Runs, facts.Data->FirstCluster),
              std::tuple(false, 2U, 500U));
    EXPECT_EQ(facts.Condition.Kind, ConditionKind::Whole);

    Volume.PlaceRecord(Record().AddData(BytesOf("abc")));
    EXPECT_TRUE(FactsOf(0).Data->InRecord);
    EXPECT_EQ(FactsOf(0).Path, "file") << "under the top";
    EXPECT_EQ(FactsOf(5).Path, "/file");
    EXPECT_EQ(FactsOf(77).Path, "") << "no way leads there";
    EXPECT_FALSE(FactsOf(5, 0, 1).RecordRead) << "stopped";
    Volume.PlaceRecord(Record());
    EXPECT_FALSE(FactsOf(5).Data);
}

TEST_F(EntryFactsTest, AMediumThatFails) {
    Volume.PlaceRecord(Record().AddData(BytesOf("abc")));
    Plan->Rules = {{.FirstSector = 0, .SectorCount = kForever, .Code = 1117}};
    const EntryFacts facts = FactsOf(31);
    EXPECT_FALSE(facts.RecordRead);
    EXPECT_EQ(facts.Path, "/outer/inner/file");
    EXPECT_TRUE(Reports.Boxes.empty() && facts.Names.empty() && !facts.Data);
}

} // namespace thntfs::test
