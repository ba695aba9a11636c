#pragma once

#include <string>

namespace thntfs {

struct SavedFile;

/// What is wrong with a name that an entry is to have in the target.
enum class NameTrouble {
    Exists, ///< something that isn't to be written over has it
    Unfit   ///< the target can't take it: characters, length, or a name with a meaning of its own
};

/// What is to be done about it.
struct NameAnswer {
    enum class Kind {
        Number, ///< a number goes behind it, and what the target can't take is replaced
        Rename, ///< it is to be NewName
        Skip    ///< the entry isn't saved, nor anything below it
    };
    Kind What = Kind::Number;
    std::string NewName; ///< UTF-8. If it won't do either, the question comes again
};

/// What a save tells, and asks, of single entries as it goes. Paths are those of the catalogue. All calls
/// come from the thread that saves.
class SaveListener {
public:
    SaveListener() = default;
    virtual ~SaveListener() = default;
    SaveListener(const SaveListener&) = delete;
    SaveListener& operator=(const SaveListener&) = delete;

    /// A file or folder had to take another name in the target.
    virtual void Renamed(const std::string& path, const std::string& targetName) = 0;
    /// A file was saved damaged. Called once for each reason.
    virtual void Warned(const std::string& path, const std::string& text) = 0;
    /// A file or folder could not be saved.
    virtual void Failed(const std::string& path, const std::string& reason) = 0;
    /// A file, folder, stream or further name was skipped, as NameTaken has answered. What is below a folder
    /// isn't told.
    virtual void Skipped(const std::string& /*path*/) {}
    /// A name won't do. Asked before anything of the entry is read, unless the name is taken meanwhile. The
    /// save waits for the answer. Not asked where SaveOptions have a prefix.
    virtual NameAnswer NameTaken(const std::string& /*path*/, const std::string& /*name*/,
                                 NameTrouble /*why*/) {
        return {};
    }
    /// What became of a file is known for good: it is on the device, failed, or was left out. Called where
    /// SaveOptions asked for a report, once for each file and each stream that is saved as one.
    virtual void Concluded(const SavedFile& /*file*/) {}
};

} // namespace thntfs
