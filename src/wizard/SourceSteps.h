#pragma once

#include <QString>
#include <cstdint>
#include <string>

class QWidget;

namespace thntfs {

// What the two source pages do once Next is pressed, whatever the source is.

/// What differs between a disk and an image.
struct SourceKind {
    void (*LogChosen)(const std::string& path, bool searched);
    const char* NoPartitions; ///< text of the box when the table names none
};
extern const SourceKind kDiskSource;
extern const SourceKind kImageSource;

/// Has the frame empty its views. It asks before about a scan that is in no file; false where the user keeps
/// that.
bool GiveUpOldScan();

/// The same, and closes the medium that was open.
bool CloseOldMedium();

/// Lists the candidates of the medium that has just been opened, from its partition table (mode 0) or by a
/// search (mode 1) in dialogs over `owner`, and writes the log's lines. `path` is the medium's. False where
/// the table names no partition, which a box has told, or the user has cancelled a dialog.
bool ListPartitions(const SourceKind& kind, const std::string& path, std::uint8_t processingMode,
                    QWidget* owner);

} // namespace thntfs
