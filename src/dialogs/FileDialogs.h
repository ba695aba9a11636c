#pragma once

#include <QString>

class QWidget;

namespace thntfs {

/// What a file is to the user. The dialogs for files of a kind begin in the folder where the last one was
/// chosen, in this run or an earlier one; where that isn't there any more, wherever the toolkit begins.
enum class FileKind { Image, Scan, Text };

/// Asks for a file to open; empty for Cancel. `filters` are Qt's: "Name (*.ext);;Other (*)".
QString ChooseFileToOpen(QWidget* owner, const QString& title, const QString& filters, FileKind kind);

/// Asks for a file to save to; empty for Cancel. What will be written is the path with `extension` appended
/// where it doesn't end exactly so: the user has been asked about writing over that file, too. The path comes
/// back as it was typed.
QString ChooseFileToSave(QWidget* owner, const QString& title, const QString& suggestedName,
                         const QString& filters, const QString& extension = {},
                         FileKind kind = FileKind::Text);

/// Asks for the place of an image; empty for Cancel. The path comes back as it was typed. Nothing is asked
/// about a file that is there: no image is ever written over.
QString ChooseImageToMake(QWidget* owner, const QString& title, const QString& suggestedName,
                          const QString& filters);

/// Asks for a text file to save to; empty for Cancel. A name that was typed without any extension comes back
/// with ".txt", and the user has been asked about writing over that file.
QString ChooseTextFileToSave(QWidget* owner, const QString& title, const QString& suggestedName);

/// Asks for a folder that is there, beginning with one; empty for Cancel.
QString ChooseFolder(QWidget* owner, const QString& title, const QString& from);

} // namespace thntfs
