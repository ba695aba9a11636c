#pragma once

#include <QCoreApplication>
#include <QGroupBox>
#include <cstdint>

class QRadioButton;

namespace thntfs {

struct WizardState;

/// The choice of a source page how to come by the partitions; kept in ProcessingMode.
/// The focus goes to the mode that is checked.
class CProcessingModes : public QGroupBox {
    Q_DECLARE_TR_FUNCTIONS(CProcessingModes)

public:
    CProcessingModes(QWidget* parent, WizardState& state, const QString& title);

    void EnableChoice(bool enable);
    /// Puts the choice back to the partition table.
    void Reset();
    /// Makes what is checked the mode.
    void Apply();

private:
    WizardState& state_;
    QRadioButton* fromTable_;
    QRadioButton* bySearch_;
};

} // namespace thntfs
