#pragma once

#include "wizard/WizardPage.h"

#include <QCoreApplication>
#include <cstdint>

namespace thntfs {

class CDiskTree;
class CInfoListBox;
class CProcessingModes;

/// The choice of the disk to recover from.
class CWizardDriveSelectionPage : public CWizardPage {
    Q_DECLARE_TR_FUNCTIONS(CWizardDriveSelectionPage)

public:
    CWizardDriveSelectionPage(WizardState& state, WizardPageOwner& owner);

    void OnSetActive() override;
    void OnDisksChanged() override;
    int OnWizardNext() override;

private:
    void LayOut();
    void Clear();
    void ShowDiskDetails(std::uint8_t index);

    CDiskTree* tree_;
    CProcessingModes* modes_;
    CInfoListBox* info_;
};

} // namespace thntfs
