#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <string>

class QWidget;

namespace thntfs {

// What the two source pages do once Next is pressed, whatever the source is.

/// The disk or the image that has just been opened.
struct ChosenSource {
    std::string Path;
    QString NoPartitions;                         ///< text of the box when the table names none
    std::function<void(bool searched)> LogChosen; ///< writes the log's line of it
};

/// What is told of a disk that this user may not read, where nobody could be asked for it.
QString WayToTheRight(const std::string& path);

/// Has the frame empty its views. It asks before about a scan that is in no file; false where the user keeps
/// that.
bool GiveUpOldScan();

/// The same, and closes the medium that was open.
bool CloseOldMedium();

/// Lists the candidates of the open medium, from its partition table (mode 0) or by a search (mode 1) in
/// dialogs over `owner`, and writes the log's lines. False where the table names no partition, which a box
/// has told, or the user has cancelled a dialog.
bool ListPartitions(const ChosenSource& source, std::uint8_t processingMode, QWidget* owner);

} // namespace thntfs
