#pragma once

#include "dialogs/SaveWishes.h"

#include <QCoreApplication>
#include <QDialog>
#include <functional>

class QCheckBox;
class QLineEdit;
class QPushButton;

namespace thntfs {

/// Asks where to save to, and for the file types to leave out, the compression and the prefix.
class CSaveData : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CSaveData)

public:
    /// Asked about the folder, an absolute path, and whether one compressed file is to be written there, when
    /// the user is done: false keeps the dialog open.
    using MaySave = std::function<bool(const QString& folder, bool compressed)>;

    /// Shows the wishes and, once accepted, has written the new ones there.
    CSaveData(QWidget* owner, SaveWishes& wishes, MaySave maySave);

    void accept() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void MakeParts();
    void LayOut();
    QLayout* LocationLines();
    QWidget* TypeBox();
    QLayout* PrefixLine();
    void Browse();
    void AddType();
    void ShowTypes();
    [[nodiscard]] QString FolderTyped() const;
    [[nodiscard]] QString PrefixFault() const;

    SaveWishes& wishes_;
    MaySave maySave_;
    QStringList types_;
    QLineEdit* folder_;
    QPushButton* browse_;
    QCheckBox* ignores_;
    QLineEdit* type_;
    QPushButton* add_;
    QPushButton* view_;
    QPushButton* clear_;
    QCheckBox* compresses_;
    QCheckBox* usesPrefix_;
    QLineEdit* prefix_;
};

} // namespace thntfs
