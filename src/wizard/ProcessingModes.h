#pragma once

#include <QGroupBox>
#include <cstdint>

class QRadioButton;

namespace thntfs {

class CWizardSheet;

/// The choice of a source page how to come by the partitions; kept in ProcessingMode of the sheet.
/// The focus goes to the mode that is checked.
class CProcessingModes : public QGroupBox {
public:
    CProcessingModes(QWidget* parent, CWizardSheet& sheet, const QString& title);

    void EnableChoice(bool enable);
    /// Puts the choice back to the partition table.
    void Reset();
    /// Makes what is checked the sheet's mode.
    void Apply();

private:
    CWizardSheet& sheet_;
    QRadioButton* fromTable_;
    QRadioButton* bySearch_;
};

} // namespace thntfs
