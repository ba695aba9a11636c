#include "CopyFixture.h"
#include "disktools/CopyMapFile.h"

#include <filesystem>
#include <random>

namespace thntfs::test {

namespace fs = std::filesystem;

namespace {

/// What a map says of each byte.
std::string Letters(const CopyMap& map) {
    std::string letters;
    map.ForEach([&letters](const Area& area) {
        EXPECT_EQ(area.First, letters.size()) << "areas touch each other";
        EXPECT_GT(area.Size, 0U);
        EXPECT_TRUE(letters.empty() || letters.back() != static_cast<char>(area.State))
            << "neighbours differ";
        letters.append(area.Size, static_cast<char>(area.State));
    });
    return letters;
}

constexpr AreaState kStates[] = {AreaState::Unread, AreaState::Bad, AreaState::Read};

} // namespace

TEST(CopyMapTest, MarksAsAnArrayOfBytesWould) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        const std::uint64_t total = random() % 40 + 1;
        CopyMap map(total);
        std::string expected(total, '?');
        for (int step = 0; step < 30; ++step) {
            const std::uint64_t first = random() % (total + 3);
            const std::uint64_t size = step == 7 ? ~std::uint64_t{0} : random() % 12;
            const AreaState state = kStates[random() % 3];
            map.Mark(first, size, state);
            for (std::uint64_t i = first; i < total && i - first < size; ++i) {
                expected[i] = static_cast<char>(state);
            }
            ASSERT_EQ(Letters(map), expected);
            for (const AreaState wanted : kStates) {
                const std::uint64_t from = random() % (total + 1);
                const std::size_t place = expected.find(static_cast<char>(wanted), from);
                const auto found = map.Find(wanted, from);
                ASSERT_EQ(found.has_value(), place != std::string::npos);
                if (found) {
                    EXPECT_EQ(found->First, place);
                    const std::size_t end = expected.find_first_not_of(static_cast<char>(wanted), place);
                    EXPECT_EQ(found->End(), std::min<std::uint64_t>(end, total));
                }
                EXPECT_EQ(map.BytesOf(wanted),
                          static_cast<std::uint64_t>(
                              std::count(expected.begin(), expected.end(), static_cast<char>(wanted))));
            }
        }
    }
}

TEST(CopyMapTest, AWreckOfADiskTakesBoundedMemoryAndNothingBadOrUnreadIsCalledRead) {
    constexpr std::uint64_t kSectors = 4000;
    const auto stateOf = [](std::uint64_t sector) { // two unread ones between two bad ones here and there
        return sector % 3 == 0 ? AreaState::Bad : sector % 600 < 3 ? AreaState::Unread : AreaState::Read;
    };
    CopyMap map(kSectors * 512, 64);
    for (std::uint64_t sector = 0; sector < kSectors; ++sector) {
        map.Mark(sector * 512, 512, stateOf(sector));
        ASSERT_LE(map.AreaCount(), 64U);
    }
    map.ForEach([&](const Area& area) {
        for (std::uint64_t sector = area.First / 512; sector < area.End() / 512; ++sector) {
            EXPECT_TRUE(stateOf(sector) == AreaState::Read || stateOf(sector) == area.State) << sector;
        }
    });
}

TEST(CopyMapTest, TheTextIsWhatOtherToolsRead) {
    CopyMap map(0x1234567890);
    map.Mark(0, 0x120000, AreaState::Read);
    map.Mark(0x8000, 0x200, AreaState::Bad);
    EXPECT_EQ(TextOfMap(map, {0x120000, '?', 1}, "Map\nSource: /dev/sdz"),
              "# Map\n"
              "# Source: /dev/sdz\n"
              "# current_pos  current_status  current_pass\n"
              "0x00120000     ?               1\n"
              "#      pos        size  status\n"
              "0x00000000  0x00008000  +\n"
              "0x00008000  0x00000200  -\n"
              "0x00008200  0x00117E00  +\n"
              "0x00120000  0x1234447890  ?\n");
}

TEST(CopyMapTest, ReadsWhatOtherToolsWrite) {
    std::string why;
    const auto map =
        MapOfText("# Rescue Logfile\r\n\n0x00000400  *\n"
                  "0x00000000\t0x00000400  +  \n 0x400 512 *\n0x600 0x200 /\n0x800 0x200 -\n0xA00 0x200 ?",
                  0xC00, why);
    ASSERT_TRUE(map) << why;
    EXPECT_EQ(PictureOf(*map), "0+2+ 2+2? 4+1- 5+1?") << "what was tried by halves is still to be read";
}

TEST(CopyMapTest, RefusesWhatIsNoMapOfTheSource) {
    const std::string head = "0x0 + 1\n";
    const std::pair<std::string, std::string> cases[] = {
        {"", "another size"},
        {head, "another size"},
        {head + "0x0 0x300 +\n", "another size"},
        {head + "0x0 0x401 +\n", "another size"},
        {head + "0x0 0x400 +\n0x400 0x1 ?\n", "another size"},
        {head + "0x0 0x200 +\n0x201 0x1FF ?\n", "line 3"},
        {head + "0x0 0x200 +\n0x100 0x200 ?\n", "line 3"},
        {head + "0x200 0x200 +\n0x0 0x200 ?\n", "line 2"},
        {head + "0x0 0x0 +\n0x0 0x400 +\n", "line 2"},
        {head + "0x0 0x400 x\n", "line 2"},
        {head + "0x0 0x400\n", "line 2"},
        {head + "0x0 0x400 + +\n", "line 2"},
        {head + "0x0 -1 +\n", "line 2"},
        {head + "0x0 0x +\n", "line 2"},
        {head + "0x0 0x10000000000000000 +\n", "line 2"},
        {head + "0x0 0x200 +\n0x200 0xFFFFFFFFFFFFFFFF +\n0x1FF 0x201 +\n", "another size"},
        {head + "0x0 0x400x +\n", "line 2"},
        {"0x0 0x400 +\n", "line 1"},
        {std::string(1000, '\0'), "line 1"},
    };
    for (const auto& [text, told] : cases) {
        std::string why;
        EXPECT_FALSE(MapOfText(text, 0x400, why)) << text;
        EXPECT_NE(why.find(told), std::string::npos) << text << ": " << why;
    }
    std::string why;
    EXPECT_TRUE(MapOfText(head + "0x0 0x400 +\n", 0x400, why));
}

TEST(CopyMapTest, TheFileKeepsMapAndSerialNumber) {
    const CopyFolder scratch;
    const std::string path = MapPathOf(scratch / "disk.th2");
    CopyMap map(0x1000);
    map.Mark(0x200, 0x400, AreaState::Bad);
    const std::string comment = MapComment("/dev/x\n0x0 0x1000 +", "WD-42 \x01 B");
    ASSERT_EQ(SaveMap(path, map, {}, comment), kErrorNone);
    std::string why;
    const auto saved = LoadMap(path, 0x1000, why);
    ASSERT_TRUE(saved) << why;
    EXPECT_EQ(PictureOf(saved->Map), "0+1? 1+2- 3+5?");
    EXPECT_EQ(saved->Serial, "WD-42 ? B");
    EXPECT_EQ(std::distance(fs::directory_iterator(scratch.Path()), fs::directory_iterator()), 1)
        << "no other file stays";

    EXPECT_FALSE(LoadMap(scratch / "none", 0x1000, why));
    EXPECT_EQ(why, "The system cannot find the file specified");
    EXPECT_FALSE(LoadMap(scratch.Path(), 0x1000, why));
}

} // namespace thntfs::test
