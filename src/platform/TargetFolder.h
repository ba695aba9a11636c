#pragma once

#include "platform/ErrorCodes.h"
#include "platform/File.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace thntfs {

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
    /// be written kErrorAccessDenied or kErrorWriteProtect.
    static ErrorCode OpenTargetFolder(const std::string& path, bool create,
                                      std::unique_ptr<TargetFolder>& folder);

    /// Makes a folder in this one and opens it. A folder that is there already is opened; anything else under
    /// the name, a link to a folder too, fails with kErrorFileExists. The caller owns `folder`, null on
    /// failure; it may be the owner of this folder, which then closes.
    virtual ErrorCode MakeSubfolder(const std::string& name, std::unique_ptr<TargetFolder>& folder) = 0;

    /// Creates a file for writing. Fails with kErrorFileExists where anything stands under the name. The
    /// caller owns `file`, null on failure.
    virtual ErrorCode CreateFile(const std::string& name, std::unique_ptr<File>& file) = 0;

    /// Deletes a file (or a link, never what it leads to) of this folder.
    virtual ErrorCode DeleteFile(const std::string& name) = 0;

    /// Bytes that this user may still write here, none where the system doesn't tell.
    [[nodiscard]] virtual std::optional<std::uint64_t> FreeBytes() const = 0;
};

/// True for a name that can only mean an entry of the folder itself: not "", "." or "..", without '/' and
/// without a NUL.
bool IsPlainName(std::string_view name);

} // namespace thntfs
