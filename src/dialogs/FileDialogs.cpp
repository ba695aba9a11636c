#include "dialogs/FileDialogs.h"

#include "shell/Boxes.h"
#include "shell/Settings.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>

namespace thntfs {

namespace {

QString KeyOf(FileKind kind) {
    switch (kind) {
    case FileKind::Image:
        return QStringLiteral("Folders/Images");
    case FileKind::Scan:
        return QStringLiteral("Folders/Scans");
    default:
        return QStringLiteral("Folders/Texts");
    }
}

QString KeptFolder(FileKind kind) {
    const QString folder = OpenSettings().value(KeyOf(kind)).toString();
    return QFileInfo(folder).isDir() ? folder : QString();
}

QString RunDialog(QFileDialog& dialog) {
    const bool chosen = dialog.exec() == QDialog::Accepted;
    return chosen ? dialog.selectedFiles().value(0) : QString();
}

QString RunFileDialog(QFileDialog& dialog, FileKind kind) {
    QString path = RunDialog(dialog);
    if (!path.isEmpty()) {
        OpenSettings().setValue(KeyOf(kind), QFileInfo(path).absolutePath());
    }
    return path;
}

QString RunSaveDialog(QFileDialog& dialog, FileKind kind, const QString& suggestedName) {
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.selectFile(suggestedName);
    return RunFileDialog(dialog, kind);
}

// The dialog has asked about the name as it was typed, not about the one with the extension.
bool MayWrite(const QString& typed, const QString& extension) {
    const QString target = typed + extension;
    if (typed.endsWith(extension) || !QFileInfo::exists(target)) {
        return true;
    }
    return AskYesNo(
        QCoreApplication::translate("FileDialogs", "%1 already exists.\nDo you want to replace it?")
            .arg(QFileInfo(target).fileName()),
        QCoreApplication::translate("FileDialogs", "Confirm"));
}

} // namespace

QString ChooseFileToOpen(QWidget* owner, const QString& title, const QString& filters, FileKind kind) {
    QFileDialog dialog(owner, title, KeptFolder(kind), filters);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return RunFileDialog(dialog, kind);
}

QString ChooseFileToSave(QWidget* owner, const QString& title, const QString& suggestedName,
                         const QString& filters, const QString& extension, FileKind kind) {
    QFileDialog dialog(owner, title, KeptFolder(kind), filters);
    const QString path = RunSaveDialog(dialog, kind, suggestedName);
    return !path.isEmpty() && MayWrite(path, extension) ? path : QString();
}

QString ChooseImageToMake(QWidget* owner, const QString& title, const QString& suggestedName,
                          const QString& filters) {
    QFileDialog dialog(owner, title, KeptFolder(FileKind::Image), filters);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    return RunSaveDialog(dialog, FileKind::Image, suggestedName);
}

QString ChooseTextFileToSave(QWidget* owner, const QString& title, const QString& suggestedName) {
    QFileDialog dialog(owner, title, KeptFolder(FileKind::Text),
                       QCoreApplication::translate("FileDialogs", "Text File (*.txt)"));
    dialog.setDefaultSuffix(QStringLiteral("txt"));
    return RunSaveDialog(dialog, FileKind::Text, suggestedName);
}

QString ChooseFolder(QWidget* owner, const QString& title, const QString& from) {
    QFileDialog dialog(owner, title, from);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return RunDialog(dialog);
}

} // namespace thntfs
