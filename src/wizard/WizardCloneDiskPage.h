#pragma once

#include "wizard/WizardPage.h"

#include <QCoreApplication>
#include <cstdint>

class QLabel;

namespace thntfs {

class CDiskTree;
class CInfoListBox;

/// The choice of the disk to clone and of the disk to write over.
class CWizardCloneDiskPage : public CWizardPage {
    Q_DECLARE_TR_FUNCTIONS(CWizardCloneDiskPage)

public:
    CWizardCloneDiskPage(WizardState& state, WizardPageOwner& owner);

    void OnSetActive() override;
    void OnDisksChanged() override;
    bool OnWizardFinish() override;

private:
    /// One of the two disks on the page.
    struct Side {
        QString ListTitle; ///< of the properties' header
        QString NameTitle;
        CDiskTree* Tree;
        QLabel* Name;
    };

    void LayOut();
    void OnSourceChanged();
    void OnTargetChanged();
    void UpdateButtons();
    void ShowCloneDetails(std::uint8_t index, const Side& side);

    Side source_;
    Side target_;
    CInfoListBox* info_;
};

} // namespace thntfs
