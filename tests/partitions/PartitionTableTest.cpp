#include "partitions/PartitionTable.h"

#include "partitions/VolumeList.h"
#include "platform/system/Interrupt.h"
#include "support/EngineFixture.h"

#include <algorithm>
#include <csignal>

namespace thntfs::test {

namespace {

using Starts = std::vector<std::uint64_t>;

class PartitionTableTest : public EngineFixture {
protected:
    PartitionTableTest() { Open(512); }

    void Open(std::uint16_t sectorBytes) {
        Image = std::make_shared<ByteVector>(std::size_t{4000} * sectorBytes);
        OpenDisk(Image, sectorBytes);
    }

    void Put(std::uint64_t sector, const ByteVector& bytes) {
        std::copy(bytes.begin(), bytes.end(),
                  Image->begin() + static_cast<std::ptrdiff_t>(sector * Engine.SourceDisk.BytesPerSector));
    }
    void PutTable(std::uint64_t sector, const std::vector<PartitionEntry>& entries) {
        Put(sector, EncodePartitionTable(entries));
    }
    void PutVolumes(const Starts& sectors) {
        for (const std::uint64_t sector : sectors) {
            Put(sector, EncodeBootSector(BootFieldsOf({})));
        }
    }

    /// Start sectors of the volumes that are found.
    Starts Read() {
        Starts starts;
        const bool result = ReadPartitionTable();
        for (const PartitionCandidate& candidate : Engine.SourceDisk.Partitions) {
            starts.push_back(candidate.StartSector);
        }
        EXPECT_EQ(result, starts.empty() ? 0 : 1);
        return starts;
    }

    /// A letter for each volume in the order of the numbers: usable, bad boot sector, unreadable, lost table.
    static std::string States() {
        std::string states;
        for (const ListedVolume& volume : ListVolumes()) {
            EXPECT_EQ(volume.Number, states.size() + 1);
            states += "ubrl"[static_cast<std::size_t>(volume.Entry.State)];
        }
        return states;
    }

    std::shared_ptr<ByteVector> Image;
};

} // namespace

TEST_F(PartitionTableTest, PrimaryVolumesInEntryOrder) {
    PutVolumes({100, 200, 300, 400});
    PutTable(0, {{0x07, 300, 50}, {0x0C, 400, 50}, {0x07, 500, 50}, {0x07, 100, 60}});
    EXPECT_EQ(Read(), (Starts{300, 100})) << "another type and a bad boot sector are left out";
    EXPECT_EQ(Engine.SourceDisk.Partitions.front().TotalSectors, 50U);
    EXPECT_EQ(Engine.SourceDisk.Partitions.back().TotalSectors, 60U);
    EXPECT_EQ(States(), "ubu") << "a bad boot sector keeps its number, another type has none";
    EXPECT_EQ(Read().size(), 2U) << "the old list is freed";
    EXPECT_EQ(Plan->Log.size(), 8U) << "a table and three boot sectors, twice";

    PutTable(0, {{0, 0, 0}, {0x07, 300, 50}});
    EXPECT_EQ(Read(), Starts{}) << "an empty first entry ends the walk";
    Put(0, EncodePartitionTable({{0x07, 300, 50}}, 0x55AA));
    EXPECT_EQ(Read(), Starts{});
}

TEST_F(PartitionTableTest, ExtendedChains) {
    PutVolumes({100, 1063, 1163, 1263, 2063});
    for (const std::uint8_t link : {std::uint8_t{0x05}, std::uint8_t{0x0F}, std::uint8_t{0x85}}) {
        PutTable(0, {{link, 1000, 900}, {0x07, 100, 60}});
        PutTable(1000, {{0x07, 63, 30}, {link, 100, 100}});
        PutTable(1100, {{0x07, 63, 31}, {link, 200, 100}});
        PutTable(1200, {{0x07, 63, 32}});
        EXPECT_EQ(Read(), (Starts{100, 1063, 1163, 1263})) << int{link};
    }
    EXPECT_EQ(Engine.SourceDisk.Partitions.back().TotalSectors, 32U);

    PutTable(0, {{0x05, 1000, 900}, {0x05, 2000, 900}});
    PutTable(2000, {{0x07, 63, 30}});
    EXPECT_EQ(Read(), (Starts{2063})) << "a later link overrides an earlier one";
    PutTable(2000, {{0x05, 1000, 900}, {0x07, 63, 30}});
    EXPECT_EQ(Read(), (Starts{2063})) << "links of the chain count from its first table";
}

TEST_F(PartitionTableTest, ChainsThatRunInACircleEnd) {
    PutVolumes({1063, 1163});
    PutTable(0, {{0x05, 1000, 900}});
    PutTable(1000, {{0x07, 63, 30}, {0x05, 100, 100}});
    PutTable(1100, {{0x07, 63, 30}, {0x05, 100, 100}});
    EXPECT_EQ(Read(), (Starts{1063, 1163})) << "a table that names itself";
    PutTable(1100, {{0x07, 63, 30}, {0x05, 0, 100}});
    EXPECT_EQ(Read(), (Starts{1063, 1163})) << "a table that names the first one";
    PutTable(0, {{0x05, 0, 1}, {0x07, 1063, 30}});
    EXPECT_EQ(Read(), (Starts{1063})) << "a link to nowhere";
    PutTable(1000, {{0x05, 0xFFFFFFFF, 1}, {0x07, 0xFFFFFFFF, 1}});
    PutTable(0, {{0x05, 1000, 1}});
    EXPECT_EQ(Read(), Starts{});

    Image->assign(Image->size(), 0);
    for (std::uint32_t table = 1; table < 3900; ++table) {
        PutTable(table, {{0x05, table, 1}}); // each names the next, counted from sector 1
    }
    PutTable(0, {{0x05, 1, 1}});
    Plan->Log.clear();
    EXPECT_EQ(Read(), Starts{});
    EXPECT_LE(Plan->Log.size(), 1025U);
}

TEST_F(PartitionTableTest, LargeSectors) {
    Open(4096);
    PutVolumes({100});
    PutTable(0, {{0x07, 100, 60}});
    EXPECT_EQ(Read(), (Starts{100}));
    EXPECT_EQ(Plan->Log[0].Size, 512U);
    EXPECT_EQ(Plan->Log[1].Size, 4096U);
    EXPECT_EQ(Plan->Log[1].Offset, 409600U);
}

TEST_F(PartitionTableTest, ReadsThatFail) {
    PutVolumes({100, 200});
    PutTable(0, {{0x07, 100, 60}, {0x07, 200, 60}});
    Plan->Rules = {{100, 1, kErrorCrc}};
    EXPECT_EQ(Read(), (Starts{200}));
    Plan->Rules = {{200, 1, kErrorNotReady}};
    EXPECT_EQ(Read(), (Starts{100}));
    EXPECT_EQ(States(), "ur");
    EXPECT_TRUE(Reports.Boxes.empty()) << "outside a job";
    Engine.ScanRunFlag = 1;
    EXPECT_EQ(Read(), (Starts{100})) << "what was found so far counts";
    EXPECT_EQ(Reports.Boxes.size(), 1U);
    PutTable(0, {{0x07, 100, 60}, {0x05, 300, 60}});
    Plan->Rules = {{300, 1, kErrorCrc}};
    Read();
    EXPECT_EQ(States(), "ul");
    CloseDisk();
    Engine.ScanRunFlag = 0;
    EXPECT_EQ(Read(), Starts{});
}

// A slow medium: each read may take seconds.
TEST_F(PartitionTableTest, AnInterruptEndsTheChainBeforeTheNextRead) {
    for (std::uint32_t table = 0; table < 50; ++table) {
        PutTable(table, {{0x07, 100, 100}, {0x07, 200, 100}, {0x05, table + 1, 100}});
    }
    static std::atomic<std::uint32_t> flag;
    OnInterrupt(flag);
    Plan->OnRead = [](std::uint64_t index, const ReadRequest&) {
        if (index == 4) {
            (void)std::raise(SIGINT);
        }
    };
    Read();
    EXPECT_EQ(Plan->Log.size(), 5U);
    OnInterrupt(flag); // as if it had not come
}

} // namespace thntfs::test
