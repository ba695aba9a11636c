#include "scaninfo/ProcessLog.h"

#include "scaninfo/JobLog.h"
#include "support/EngineFixture.h"
#include "support/MemoryFile.h"

namespace thntfs::test {

namespace {

TEST(ProcessLogTest, ARowsTimeIsThatOfItsArrival) {
    ProcessLog log;
    log.Add({"first", "a step", "a time of the sender's"});
    log.Add({"second", "a step", ""});
    ASSERT_EQ(log.Rows().size(), 2U);
    EXPECT_EQ(log.Rows()[0].Name, "first");
    EXPECT_EQ(log.Rows()[0].Time.size(), std::string("Thu Nov 19 2026 06:21:28").size());
    log.Clear();
    EXPECT_TRUE(log.Rows().empty());
}

TEST(ProcessLogTest, TextOfTheFile) {
    const std::string rule(68, '-');
    const std::string head = "------------------------Tarnholt Volume Salvage (NTFS) v2\t.0.1  Process "
                             "Log------------------------\r\n\r\n\r\n" +
                             rule;
    EXPECT_EQ(LogHeadText(), head);
    EXPECT_EQ(LogRowText({"Name", "Text", "Thu Nov 19 2026 06:21:28"}),
              "\r\nName\r\n\t\tText\r\n\t\tThu Nov 19 2026 06:21:28\r\n" + rule);

    ProcessLog log;
    log.Add({"one", std::string(3U << 20U, 'x'), ""});
    log.Add({"two", "", ""});
    MemoryFile file;
    EXPECT_EQ(WriteLogText(log, file), kErrorNone);
    EXPECT_EQ(file.Content, BytesOf(head + LogRowText(log.Rows()[0]) + LogRowText(log.Rows()[1])));
    ASSERT_EQ(file.Writes.size(), 2U);
    for (const int failing : {1, 2}) {
        file.OnCall = [failing, call = 0]() mutable {
            return ++call == failing ? kErrorDiskFull : kErrorNone;
        };
        EXPECT_EQ(WriteLogText(log, file), kErrorDiskFull) << failing;
    }
}

class JobLogTest : public EngineFixture {};

TEST_F(JobLogTest, EndsAreToldAsSuchAndNumbersByTheirLastDigit) {
    LogTurboScanStarted(12);
    LogTurboScanEnded(12, true);
    LogBasicScanEnded(false);
    ASSERT_EQ(Reports.Log.size(), 3U);
    EXPECT_EQ(Reports.Log[0].Name, "Started turbo scan of logical drive 2");
    EXPECT_EQ(Reports.Log[1].Status, kLogDone);
    EXPECT_EQ(Reports.Log[2].Status, kLogFailed);
    PartitionCandidate candidate;
    candidate.StartSector = (std::uint64_t{1} << 32U) + 5;
    candidate.TotalSectors = 256;
    candidate.BytesPerSector = 4096;
    EXPECT_EQ(PartitionChosenEntry(1, candidate).Description, "Starting Sector 5, Size   1.000 MB");
}

} // namespace

} // namespace thntfs::test
