#pragma once

#include "wizard/WizardPage.h"

#include <QCoreApplication>
#include <cstdint>

class QCheckBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace thntfs {

class CDiskTree;
class CInfoListBox;

/// The choice of a disk and of the image file to make of it.
class CWizardImageDiskPage : public CWizardPage {
    Q_DECLARE_TR_FUNCTIONS(CWizardImageDiskPage)

public:
    CWizardImageDiskPage(WizardState& state, WizardPageOwner& owner);

    void OnSetActive() override;
    void OnDisksChanged() override;
    bool OnWizardFinish() override;

private:
    void LayOut();
    void ShowImageDetails(std::uint8_t index);
    void PickDestination();
    void UpdateButtons();

    CDiskTree* tree_;
    QPushButton* pick_;
    CInfoListBox* info_;
    QLabel* pathText_;
    QLabel* oldImage_; ///< shows where the file is there already
    QCheckBox* retry_;
    QSpinBox* passes_;
};

} // namespace thntfs
