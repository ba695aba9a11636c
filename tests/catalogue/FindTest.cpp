#include "catalogue/CatalogueFixture.h"
#include "catalogue/CatalogueReader.h"
#include "catalogue/FindWalk.h"

#include <deque>
#include <random>

namespace thntfs::test {
namespace {

TEST(Wildcard, AnswersForNamesAsPeopleWriteThem) {
    struct Case {
        const char *Pattern, *Name;
        int Folded, Exact;
    };
    constexpr Case kCases[] = {
        {"a.doc", "a.docx", 0, 0},
        {"A*.TXT", "ab.txt", 1, 0},
        {"[x", "{X", 1, 0},
        {"*aab", "aaab", 1, 1},
        {"?\xC3\xA4?", "x\xC3\xA4y", 1, 1},
        {"??", "\xC3\xA4", 0, 0},
        {"\xC3\x84*", "\xC3\xA4rger", 1, 0},
        {"\xD0\xA0?", "\xD1\x80\xD0\xB0", 1, 0}, // small and capital Er differ in both bytes
        {"\xE4\xB8\x80", "\xE4\xB8\xA0", 0, 0},  // these two differ in bit 0x20 of a byte
        {"?", "\xF0\x9F\x98\x80", 1, 1},
        {"?", "\xFF", 1, 1},
        {"??",
         "\xC3"
         "A",
         1, 1},
        {"\xC3", "\xC3\xA4", 0, 0},
    };
    for (const Case& one : kCases) {
        EXPECT_EQ(MatchWildcard(one.Pattern, one.Name, 0x20), one.Folded) << one.Pattern << " " << one.Name;
        EXPECT_EQ(MatchWildcard(one.Pattern, one.Name, 0), one.Exact) << one.Pattern << " " << one.Name;
    }
    EXPECT_TRUE(Wildcard("?\xC3\x84?", false).Matches(u"\xD83D\xDE00\u00E4\xD800"));
}

// The rule told plainly: with a star, a front part of the name that the pattern fits is enough.
bool PlainMatch(std::string_view pattern, std::string_view name, bool star = false) {
    if (pattern.empty()) {
        return star || name.empty();
    }
    if (pattern[0] == '*') {
        return PlainMatch(pattern.substr(1), name, true) ||
               (!name.empty() && PlainMatch(pattern, name.substr(1), true));
    }
    return !name.empty() && (pattern[0] == '?' || (pattern[0] | 0x20) == (name[0] | 0x20)) &&
           PlainMatch(pattern.substr(1), name.substr(1), star);
}

std::string RandomText(std::mt19937& random, const char* letters, std::size_t most) {
    std::string text(random() % (most + 1), ' ');
    for (char& letter : text) {
        letter = letters[random() % std::strlen(letters)];
    }
    return text;
}

TEST(Wildcard, AgreesWithThePlainRule) {
    std::mt19937 random(7);
    for (int i = 0; i < 50000; ++i) {
        const std::string pattern = RandomText(random, "aB.*?", 6);
        const std::string name = RandomText(random, "AaBb.", 8);
        ASSERT_EQ(MatchWildcard(pattern, name, 0x20) != 0, PlainMatch(pattern, name))
            << pattern << " " << name;
    }
}

class Find : public CatalogueFixture {
protected:
    // As the order is told: folder by folder, each in the order of its list.
    static std::vector<std::uint32_t> PlainFind(const FindCriteria& criteria, std::uint32_t startId) {
        FindMatcher matcher(criteria);
        std::vector<std::uint32_t> hits;
        for (std::deque<std::uint32_t> queue{startId}; !queue.empty(); queue.pop_front()) {
            std::uint64_t bytes = 0;
            std::uint32_t files = 0;
            const std::uint32_t block = LoadEntry(queue.front())->BlockOffset;
            for (const CatalogueItem& child : ListFolder(block, bytes, files, files, true)) {
                if (child.IsFolder()) {
                    queue.push_back(child.EntryId);
                }
                if (matcher.Matches(child)) {
                    hits.push_back(child.EntryId);
                }
            }
        }
        return hits;
    }
    // Each second look is refused, and the walk goes on from there.
    static std::vector<std::uint32_t> Found(const FindCriteria& criteria, std::uint32_t startId) {
        std::vector<std::uint32_t> hits;
        FindWalk walk(criteria, startId);
        bool refuse = false;
        while (!walk.Ended() && hits.size() < 1000) {
            if (const auto hit = walk.Next([&refuse] { return refuse = !refuse; })) {
                EXPECT_EQ(LoadEntry(hit->Entry)->ParentNumber, LoadEntry(hit->Folder)->RecordNumber);
                hits.push_back(hit->Entry);
            }
        }
        return hits;
    }
};

TEST_F(Find, GivesTheHitsOfRandomTreesInTheOrderOfTheFoldersLists) {
    std::mt19937 random(3);
    for (int tree = 0; tree < 20; ++tree) {
        HandWritten hand;
        std::vector<FolderIndexNode*> folders{&HandWritten::Root()};
        for (std::uint32_t i = 0; i < 400; ++i) {
            FolderIndexNode& parent = *folders[random() % folders.size()];
            const std::string text = RandomText(random, "ab.", 4);
            const std::u16string name(text.begin(), text.end());
            if (random() % 5 == 0) {
                folders.push_back(&hand.AddFolder(parent, 100 + i, name));
            } else {
                CatalogueEntry entry{.Size = random() % 3, .RecordNumber = 1000 + i};
                entry.Flags = random() % 2 == 0 ? kFlagLive : 0;
                entry.CreatedDate = static_cast<std::uint16_t>(random() % 3);
                entry.AccessedDate = static_cast<std::uint16_t>(random() % 3);
                hand.AddEntry(parent, entry, name);
            }
        }
        const std::uint32_t start = tree % 2 == 0 ? kTopEntryId : folders.back()->EntryId;
        hand.Finish();
        FindCriteria criteria{.Pattern = tree % 3 == 0 ? "*" : "?*a", .MinSize = tree % 4 == 0 ? 1U : 0U};
        if (tree % 5 == 0) {
            criteria.Created = DosDateRange{1, 1};
            criteria.MaxSize = 1;
        }
        criteria.Accessed = tree % 7 == 0 ? std::optional(DosDateRange{1, 2}) : std::nullopt;
        criteria.DeletedOnly = tree % 6 == 0;
        EXPECT_EQ(Found(criteria, start), PlainFind(criteria, start)) << tree;
        CloseCatalogue();
    }
}

TEST_F(Find, EndsInFoldersThatHoldThemselvesAndTellsNothingOfAFile) {
    HandWritten hand;
    FolderIndexNode& folder = hand.AddFolder(HandWritten::Root(), 50, u"loop");
    AddChild(folder, folder.EntryId);
    AddChild(folder, kRootEntryId);
    const std::uint32_t file = hand.AddFile(folder, u"file");
    const std::uint32_t start = folder.EntryId;
    hand.Finish();
    FindWalk walk({.Pattern = "*"}, start);
    const auto goOn = [] { return true; };
    EXPECT_EQ(walk.Next(goOn)->Entry, file);
    EXPECT_TRUE(walk.Next(goOn) && walk.Next(goOn));
    EXPECT_FALSE(walk.Next(goOn));
    EXPECT_FALSE(FindWalk({.Pattern = "*"}, file).Next(goOn));
    EXPECT_FALSE(FindWalk({.Pattern = "*"}, 12345).Next(goOn));
}

} // namespace
} // namespace thntfs::test
