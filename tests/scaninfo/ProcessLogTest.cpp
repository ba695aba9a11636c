#include "scaninfo/ProcessLog.h"

#include "platform/files/WorkFolder.h"
#include "support/EngineFixture.h"
#include "support/FailingFileStore.h"

#include <cctype>

namespace thntfs::test {

namespace {

ProcessLogEntry Entry(const std::string& name, const std::string& description, const std::string& time = {}) {
    ProcessLogEntry entry;
    entry.Name = name;
    entry.Description = description;
    entry.Time = time;
    return entry;
}

/// Letters and digits of a text as "a" and "0".
std::string ShapeOf(std::string text) {
    for (char& c : text) {
        c = std::isalpha(static_cast<unsigned char>(c)) != 0 ? 'a' : c;
        c = std::isdigit(static_cast<unsigned char>(c)) != 0 ? '0' : c;
    }
    return text;
}

TEST(ProcessLogTest, ARowsTimeIsThatOfItsArrival) {
    ProcessLog log;
    ProcessLogEntry entry = Entry("first", "a step", "a time of the sender's");
    log.Add(entry);
    entry.Name = "second";
    log.Add(entry);
    ASSERT_EQ(log.Rows().size(), 2U);
    EXPECT_EQ(log.Rows()[0].Name, "first");
    EXPECT_EQ(log.Rows()[1].Name, "second");
    std::string shape = ShapeOf(log.Rows()[0].Time);
    shape[8] = '0'; // blank before the tenth
    EXPECT_EQ(shape, "aaa aaa 00 0000 00:00:00");
    log.Clear();
    EXPECT_TRUE(log.Rows().empty());
}

TEST(ProcessLogTest, TextOfTheFile) {
    const std::string rule = "--------------------------------------------------------------------";
    ASSERT_EQ(rule.size(), 68U);
    const std::string head = "------------------------Tarnholt Volume Salvage (NTFS) v2\t.0.1  Process "
                             "Log------------------------\r\n\r\n\r\n" +
                             rule;
    EXPECT_EQ(LogHeadText(), head);
    EXPECT_EQ(LogRowText(Entry("Name", "Text", "Thu Nov 19 2026 06:21:28")),
              "\r\nName\r\n\t\tText\r\n\t\tThu Nov 19 2026 06:21:28\r\n" + rule);

    WorkFolder scratch;
    ASSERT_EQ(scratch.Create(), kErrorNone);
    ProcessLog log;
    log.Add(Entry("one", ""));
    log.Add(Entry("two", std::string(3U << 20U, 'x')));
    std::unique_ptr<File> file;
    ASSERT_EQ(Files().Open(scratch.Path() + "/log.txt", FileMode::CreateAlways, file), kErrorNone);
    EXPECT_EQ(WriteLogText(log, *file), kErrorNone);
    EXPECT_EQ(ReadFileBytes(scratch.Path() + "/log.txt"),
              BytesOf(head + LogRowText(log.Rows()[0]) + LogRowText(log.Rows()[1])));
}

TEST(ProcessLogTest, AFailedWriteIsTold) {
    WorkFolder scratch;
    ASSERT_EQ(scratch.Create(), kErrorNone);
    FailingFileStore store;
    std::unique_ptr<File> file;
    ASSERT_EQ(store.Open(scratch.Path() + "/log.txt", FileMode::CreateAlways, file), kErrorNone);
    store.FailAt(1);
    EXPECT_EQ(WriteLogText(ProcessLog(), *file), kErrorDiskFull);
}

} // namespace

} // namespace thntfs::test
