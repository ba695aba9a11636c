#pragma once

#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace thntfs {

class File;
struct FileDates;

/// An open folder that recovered files and folders go to. Their names come from a damaged medium and may be
/// made to mislead, so this class takes nothing but a single name and follows no link: whatever the names, no
/// file or folder comes into being outside the folder that the user chose, and no file is written over.
///
/// Calls with a name fail with kErrorInvalidName where IsPlainName refuses it or the file system does.
class TargetFolder {
public:
    TargetFolder() = default;
    virtual ~TargetFolder() = default;
    TargetFolder(const TargetFolder&) = delete;
    TargetFolder& operator=(const TargetFolder&) = delete;

    /// Opens the folder of a path that the user gave; links in it are followed. `create` makes it and those
    /// of its parents that are missing. On success `folder` holds it, which the caller owns; on failure it is
    /// null. A path that is no folder gives kErrorDirectory, a missing one kErrorFileNotFound, one that can't
    /// be written kErrorAccessDenied or kErrorWriteProtect. Part files in it that a run which is no more left
    /// behind are taken away.
    static ErrorCode OpenTargetFolder(const std::string& path, bool create,
                                      std::unique_ptr<TargetFolder>& folder);

    /// True where all that is written becomes one file in the end: Sync, called once behind all else,
    /// completes it, and a file or folder has to have its final name and dates from the start.
    [[nodiscard]] virtual bool IsArchive() const { return false; }

    /// Told in an archive before MakeSubfolder: the dates of the folder that is to be made. Does nothing by
    /// default.
    virtual void ExpectSubfolder(const FileDates& dates);

    /// Makes a folder in this one and opens it. A folder that is there already under exactly this name is
    /// opened, and stale part files in it are taken away. Anything else under the name fails with
    /// kErrorFileExists: a file, a link to a folder too, and on a system to which the names are the same, a
    /// folder whose name differs in case. The caller owns `folder`, null on failure; it may be the owner of
    /// this folder, which then closes.
    virtual ErrorCode MakeSubfolder(const std::string& name, std::unique_ptr<TargetFolder>& folder) = 0;

    /// Opens a folder of this one again that MakeSubfolder has given under this name. Follows no link. The
    /// caller owns `folder`, as above.
    virtual ErrorCode OpenSubfolder(const std::string& name, std::unique_ptr<TargetFolder>& folder) = 0;

    /// True where anything stands under a name.
    [[nodiscard]] virtual bool Has(const std::string& name) const = 0;

    /// Creates a file for writing. Fails with kErrorFileExists where anything stands under the name. The
    /// caller owns `file`, null on failure, and asks its Close how the writing went.
    virtual ErrorCode CreateFile(const std::string& name, std::unique_ptr<File>& file) = 0;

    /// Creates a file under a part name (platform/PartName.h), which `name` is set to. As long as the file is
    /// open, no other run takes it for a stale one. The caller owns `file`, null on failure.
    virtual ErrorCode CreatePart(std::string& name, std::unique_ptr<File>& file) = 0;

    /// Gives a part file, which is still open, its final name in one step. Fails with kErrorFileExists where
    /// anything stands under that name.
    virtual ErrorCode NamePart(const std::string& part, const std::string& name) = 0;

    /// Gives a file of this folder that CreateFile or NamePart has named a further name in `folder`, one of
    /// the same target, which may be this one. Fails with kErrorFileExists where anything stands under that
    /// name, and with another code where the file system has no such links, or no more for this file.
    virtual ErrorCode LinkFile(const std::string& name, TargetFolder& folder, const std::string& newName) = 0;

    /// Sets the folder's own dates, as File::SetDates does. What is made in it later changes them again.
    virtual void SetDates(const FileDates& dates) = 0;

    /// Deletes a file (or a link, never what it leads to) of this folder.
    virtual ErrorCode DeleteFile(const std::string& name) = 0;

    /// Bytes that this user may still write here, none where the system doesn't tell.
    [[nodiscard]] virtual std::optional<std::uint64_t> FreeBytes() const = 0;

    /// True where what a file skips takes no room in this folder. Found out by trying, so to be asked once.
    virtual bool KeepsHoles() = 0;

    /// For the folder that OpenTargetFolder gave: waits until all that has been written in it and below is on
    /// the device, files that are closed already too. Fails where any of that could not be written since the
    /// last call; which file it was isn't known.
    virtual ErrorCode Sync() = 0;
};

/// True for a name that can only mean an entry of the folder itself: not "", "." or "..", without '/' and
/// without a NUL.
bool IsPlainName(std::string_view name);

} // namespace thntfs
