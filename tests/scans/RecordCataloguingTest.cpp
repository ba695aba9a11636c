#include "scans/RecordCataloguing.h"

#include "catalogue/CatalogueFixture.h"
#include "scans/NaiveCatalogue.h"

#include <random>

namespace thntfs::test {

namespace {

class RecordCataloguingTest : public CatalogueFixture {};

struct Step {
    bool Folder;
    std::uint32_t Number;
    std::uint32_t Parent;
    std::u16string Name;
};

using Sequence = std::function<Step(std::uint32_t index, std::mt19937& random)>;

CatalogueEntry EntryOf(const Step& step, std::uint32_t index) {
    CatalogueEntry entry;
    entry.Size = step.Folder ? 0 : std::uint64_t{index} << 20U;
    entry.RecordSector = 1000 + index;
    entry.RecordNumber = step.Number;
    entry.ParentNumber = step.Parent;
    entry.Flags = step.Folder ? kFlagFolder : kFlagLive;
    return entry;
}

} // namespace

TEST_F(RecordCataloguingTest, WritesTheBytesOfTheNaiveCatalogue) {
    struct Case {
        const char* Name;
        Sequence NextStep;
    };
    const Case cases[] = {
        {"anything",
         [](std::uint32_t, std::mt19937& random) {
             return Step{random() % 4 == 0, static_cast<std::uint32_t>(random() % 900),
                         static_cast<std::uint32_t>(random() % 900), std::u16string(random() % 40, u'n')};
         }},
        {"two folders in turn",
         [](std::uint32_t i, std::mt19937&) {
             return Step{false, 100 + i, 30 + i % 2, u"file"};
         }},
        {"a chain of folders, each in the next",
         [](std::uint32_t i, std::mt19937&) {
             return Step{true, 100 + i, 101 + i, u"folder"};
         }},
        {"folders behind their children",
         [](std::uint32_t i, std::mt19937&) {
             return i % 40 != 39 ? Step{false, 9000, 50 + i / 40, u"x"}
                                 : Step{true, 50 + i / 40, 5, u"parent"};
         }},
        {"all in the top, the root or themselves",
         [](std::uint32_t i, std::mt19937& random) {
             return Step{i % 3 == 0, i % 7, static_cast<std::uint32_t>(random() % 7), u"y"};
         }},
        {"lost folders from all over",
         [](std::uint32_t i, std::mt19937& random) {
             return Step{false, i, static_cast<std::uint32_t>(random() >> (random() % 32)), u"z"};
         }},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        std::mt19937 random(11);
        ASSERT_EQ(CreateCatalogue(), 1);
        NaiveCatalogue model;
        std::uint32_t nextId = kFirstEntryId;
        for (std::uint32_t i = 0; i < 4000; ++i) {
            const Step step = test.NextStep(i, random);
            const CatalogueEntry fields = EntryOf(step, i);
            DecodedEntry decoded;
            static_cast<CatalogueEntry&>(decoded) = fields;
            decoded.SetName(step.Name.empty() ? u"" : step.Name);
            CatalogueRecord(decoded, step.Folder, nextId);
            const std::string lostName = "#" + std::to_string(step.Number);
            const std::u16string name =
                step.Name.empty() ? std::u16string(lostName.begin(), lostName.end()) : step.Name;
            step.Folder ? model.AddFolder(fields, name) : model.AddFile(fields, name);
            ASSERT_EQ(nextId, model.NextId);
        }
        FinishCatalogue(nextId);
        CloseCatalogue();
        model.Finish();
        EXPECT_TRUE(Stored(kTreeFileName) == model.Tree);
        EXPECT_TRUE(Stored(kEntryFileName) == model.Entries);
        EXPECT_TRUE(Stored(kNameFileName) == model.Names);
    }
}

// There was no memory for the chain of a folder when a child named it.
TEST_F(RecordCataloguingTest, AFolderLeftWithoutAChainGetsOneAndTheRootStays) {
    ASSERT_EQ(CreateCatalogue(), 1);
    Engine.Folders->FindOrAddPlaceholder(70);
    Engine.Folders->FindOrAddPlaceholder(80);
    std::uint32_t nextId = kFirstEntryId;
    for (const Step& step : {Step{false, 71, 70, u"child"}, Step{true, 80, 5, u"folder"}}) {
        DecodedEntry decoded;
        static_cast<CatalogueEntry&>(decoded) = EntryOf(step, 0);
        decoded.SetName(step.Name);
        CatalogueRecord(decoded, step.Folder, nextId);
    }
    FinishCatalogue(nextId);
    CloseCatalogue();
    EXPECT_EQ(StoredBlockAt(0).Slots[0], 1U) << "the root";
    EXPECT_EQ(StoredBlockAt(StoredEntryAt(4).BlockOffset).Slots[0], 2U) << "#70 holds the child";
    EXPECT_EQ(StoredBlockAt(StoredEntryAt(3).BlockOffset).OwnerNumber, 80U);
}

} // namespace thntfs::test
