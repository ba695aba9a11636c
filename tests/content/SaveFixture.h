#pragma once

#include "content/SaveEntries.h"
#include "content/SavedFile.h"
#include "engine/LocateMft.h"
#include "scans/BasicScan.h"
#include "scans/ScanFixture.h"
#include "support/FailingFileStore.h"
#include "support/ZipReader.h"

#include <deque>
#include <filesystem>
#include <map>

namespace thntfs::test {

/// A listener that answers questions from a list, with a number behind its end, and keeps what it is told.
struct ScriptedListener : SaveListener {
    void Renamed(const std::string&, const std::string&) override {}
    void Warned(const std::string&, const std::string&) override {}
    void Failed(const std::string& path, const std::string&) override { FailedPaths.push_back(path); }
    void Skipped(const std::string& path) override { SkippedPaths.push_back(path); }
    void Concluded(const SavedFile& file) override {
        Reasons[file.Path] = file.Reasons.empty() ? "" : file.Reasons.back();
    }
    NameAnswer NameTaken(const std::string& path, const std::string& name, NameTrouble why) override {
        Asked.push_back(path + " " + name + (why == NameTrouble::Unfit ? "!" : ""));
        if (Answers.empty()) {
            return {};
        }
        NameAnswer answer = Answers.front();
        Answers.pop_front();
        return answer;
    }

    std::deque<NameAnswer> Answers;
    Lines Asked; ///< "path name", '!' behind one that the target can't take
    Lines FailedPaths;
    Lines SkippedPaths;
    std::map<std::string, std::string> Reasons; ///< of all files by path
};

inline NameAnswer Rename(const std::string& name) { return {NameAnswer::Kind::Rename, name}; }
inline NameAnswer Skip() { return {NameAnswer::Kind::Skip, ""}; }

/// A volume that is scanned, and a folder to save to.
class SaveFixture : public ScanFixture {
protected:
    void Scan() {
        EXPECT_EQ(LocateMft(), 1);
        EXPECT_EQ(RunScan([] { return BasicScan(); }), 1);
    }
    SaveTotals SaveAllTo(std::unique_ptr<TargetFolder> target, const SaveOptions& options = {}) {
        Engine.ScanRunFlag = 1;
        EntrySaver saver(std::move(target), Listener, options);
        saver.Save(FindEntries(""));
        return saver.Finish();
    }
    SaveTotals SaveLoose(const SaveOptions& options = {}) {
        std::unique_ptr<TargetFolder> target;
        EXPECT_EQ(TargetFolder::OpenTargetFolder(Target, true, target), kErrorNone);
        return SaveAllTo(std::move(target), options);
    }
    /// As ReadZip gives an archive.
    [[nodiscard]] ZipItems Saved() const {
        namespace fs = std::filesystem;
        ZipItems items;
        for (const auto& entry : fs::recursive_directory_iterator(Target)) {
            const auto when = std::chrono::file_clock::to_sys(entry.last_write_time()).time_since_epoch();
            const std::string path = entry.path().string();
            const ByteVector bytes = entry.is_directory() ? ByteVector() : ReadFileBytes(path);
            items[path.substr(Target.size() + 1) + (entry.is_directory() ? "/" : "")] = {
                {bytes.begin(), bytes.end()}, std::chrono::floor<std::chrono::seconds>(when).count()};
        }
        return items;
    }
    /// The paths alone.
    static Lines PathsIn(const ZipItems& items) {
        Lines paths;
        for (const auto& [path, item] : items) {
            paths.push_back(path);
        }
        return paths;
    }

    ScriptedListener Listener;
    FailingFileStore Store;
    std::string Target = Engine.CatalogueFolder + "/target";
};

} // namespace thntfs::test
