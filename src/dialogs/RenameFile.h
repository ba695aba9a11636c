#pragma once

#include <QCoreApplication>
#include <QDialog>
#include <QString>

class QLineEdit;

namespace thntfs {

/// Asks for another name for a file that can't be saved under its own. Closing it skips the file.
class CRenameFile : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CRenameFile)

public:
    enum class Answer { Rename, RenameAll, Skip, SkipAll };

    /// `why` ends the sentence "please provide new name ( … )".
    CRenameFile(QWidget* owner, const QString& name, const QString& why, const QString& suggestion);

    [[nodiscard]] Answer Chosen() const { return chosen_; }
    [[nodiscard]] QString NewName() const;

private:
    QLayout* Texts(const QString& name, const QString& why);
    QLayout* Buttons();
    void Choose(Answer answer);

    QLineEdit* newName_;
    Answer chosen_ = Answer::Skip;
};

} // namespace thntfs
