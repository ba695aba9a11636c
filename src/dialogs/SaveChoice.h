#pragma once

#include "dialogs/SaveWishes.h"

#include <QCoreApplication>
#include <QDialog>

class QCheckBox;
class QComboBox;
class QRadioButton;

namespace thntfs {

/// Asks what a save is to take: exact files or the data as stored; all, deleted or existing ones. Its button
/// opens the help page that explains the choice.
class CSaveChoice : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CSaveChoice)

public:
    /// Shows the wishes and, once accepted, has written the new ones there.
    CSaveChoice(QWidget* owner, SaveWishes& wishes);

    void accept() override;

private:
    QWidget* MakeReadings();
    QLayout* MakeReach();
    QLayout* MakeButtons();

    SaveWishes& wishes_;
    QRadioButton* exact_;
    QRadioButton* stored_;
    QCheckBox* streams_;
    QComboBox* reach_;
};

} // namespace thntfs
