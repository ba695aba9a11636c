#pragma once

#include "content/SaveEntries.h"
#include "content/SavedFile.h"
#include "engine/LocateMft.h"
#include "scans/BasicScan.h"
#include "scans/ScanFixture.h"
#include "support/FailingFileStore.h"
#include "support/ZipReader.h"

#include <filesystem>
#include <optional>
#include <sstream>

namespace thntfs::test {

namespace fs = std::filesystem;

/// A listener that answers questions from a list and keeps what it is told.
struct ScriptedListener : SaveListener {
    void Renamed(const std::string&, const std::string&) override {}
    void Warned(const std::string&, const std::string&) override {}
    void Failed(const std::string&, const std::string&) override { ++Failures; }
    void Skipped(const std::string& path) override { Told += "-" + path + ", "; }
    void Concluded(const SavedFile& file) override {
        Told += file.Reasons.empty() ? "" : file.Path + ": " + file.Reasons.back() + ", ";
    }
    NameAnswer NameTaken(const std::string& path, const std::string& name, NameTrouble why) override {
        Told += path + " " + name + (why == NameTrouble::Unfit ? "!, " : "?, ");
        std::string word;
        if (!(Answers >> word) || word == "#") {
            return {};
        }
        Engine.ScanRunFlag = word == "stop:" ? 0 : 1;
        return {word == "-" ? NameAnswer::Kind::Skip : NameAnswer::Kind::Rename, word};
    }

    std::istringstream Answers; ///< names, '-' to skip, '#' for a number, as behind the end; "stop:" stops
    std::string Told;           ///< "path name?" or "path name!" that is asked, "-path", "path: reason"
    std::uint64_t Failures = 0;
};

/// A volume that is scanned, and a folder to save to.
class SaveFixture : public ScanFixture {
protected:
    void Scan() {
        EXPECT_EQ(LocateMft(), 1);
        EXPECT_EQ(RunScan([] { return BasicScan(); }), 1);
    }
    /// Saves everything. What is counted before is what is done, at each moment not more, and in the end all.
    SaveTotals SaveAllTo(std::unique_ptr<TargetFolder> target, const SaveOptions& options = {}) {
        Engine.ScanRunFlag = 1;
        Listener.emplace().Answers.str(Answers);
        Work = CountSaveWork(FindEntries(""), options);
        EntrySaver saver(std::move(target), *Listener, options);
        MostBetween = 0;
        Reports.OnProgress = [&, calls = 0]() mutable {
            const std::uint64_t bytes = saver.Done().Bytes;
            EXPECT_TRUE(MostBetween <= bytes && bytes <= Work.Bytes);
            MostBetween = bytes < Work.Bytes ? bytes : MostBetween;
            Engine.ScanRunFlag = ++calls == StopAt ? 0U : Engine.ScanRunFlag.load();
        };
        saver.Save(FindEntries(""));
        const SaveTotals totals = saver.Finish();
        EXPECT_TRUE(totals.Stopped || saver.Done().Bytes == Work.Bytes);
        EXPECT_TRUE(totals.Stopped || saver.Done().Files == Work.Files);
        Reports.OnProgress = {};
        return totals;
    }
    SaveTotals SaveLoose(const SaveOptions& options = {}) {
        std::unique_ptr<TargetFolder> target;
        EXPECT_EQ(TargetFolder::OpenTargetFolder(Target, true, target), kErrorNone);
        return SaveAllTo(std::move(target), options);
    }
    /// As ReadZip gives an archive.
    [[nodiscard]] ZipItems Saved() const {
        ZipItems items;
        for (const auto& entry : fs::recursive_directory_iterator(Target)) {
            const auto when = std::chrono::file_clock::to_sys(entry.last_write_time()).time_since_epoch();
            const bool folder = entry.is_directory();
            const ByteVector bytes = folder ? ByteVector() : ReadFileBytes(entry.path());
            items[entry.path().string().substr(Target.size() + 1) + (folder ? "/" : "")] = {
                {bytes.begin(), bytes.end()}, std::chrono::floor<std::chrono::seconds>(when).count()};
        }
        return items;
    }
    /// The paths alone, a blank behind each.
    static std::string PathsIn(const ZipItems& items) {
        std::string paths;
        for (const auto& [path, item] : items) {
            paths += path + " ";
        }
        return paths;
    }

    std::optional<ScriptedListener> Listener; ///< of the last save
    std::string Answers;
    int StopAt = 0; ///< the report of progress that stops a save; 0 for none
    SaveWork Work;
    std::uint64_t MostBetween = 0; ///< the last count of bytes before the end
    std::string Target = Engine.CatalogueFolder + "/target";
};

} // namespace thntfs::test
