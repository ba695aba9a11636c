#include "dialogs/FileDialogs.h"

#include "shell/Boxes.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>

namespace thntfs {

namespace {

QString RunDialog(QFileDialog& dialog) {
    const bool chosen = dialog.exec() == QDialog::Accepted;
    return chosen ? dialog.selectedFiles().value(0) : QString();
}

QString RunSaveDialog(QFileDialog& dialog, const QString& suggestedName) {
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.selectFile(suggestedName);
    return RunDialog(dialog);
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

QString ChooseFileToOpen(QWidget* owner, const QString& title, const QString& filters) {
    QFileDialog dialog(owner, title, QString(), filters);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return RunDialog(dialog);
}

QString ChooseFileToSave(QWidget* owner, const QString& title, const QString& suggestedName,
                         const QString& filters, const QString& extension) {
    QFileDialog dialog(owner, title, QString(), filters);
    const QString path = RunSaveDialog(dialog, suggestedName);
    return !path.isEmpty() && MayWrite(path, extension) ? path : QString();
}

QString ChooseImageToMake(QWidget* owner, const QString& title, const QString& suggestedName,
                          const QString& filters) {
    QFileDialog dialog(owner, title, QString(), filters);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    return RunSaveDialog(dialog, suggestedName);
}

QString ChooseTextFileToSave(QWidget* owner, const QString& title, const QString& suggestedName) {
    QFileDialog dialog(owner, title, QString(),
                       QCoreApplication::translate("FileDialogs", "Text File (*.txt)"));
    dialog.setDefaultSuffix(QStringLiteral("txt"));
    return RunSaveDialog(dialog, suggestedName);
}

QString ChooseFolder(QWidget* owner, const QString& title, const QString& from) {
    QFileDialog dialog(owner, title, from);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return RunDialog(dialog);
}

} // namespace thntfs
