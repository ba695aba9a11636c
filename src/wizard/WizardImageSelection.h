#pragma once

#include "platform/system/ErrorCodes.h"
#include "wizard/WizardPage.h"

#include <QCoreApplication>
#include <string>

class QLabel;
class QPushButton;

namespace thntfs {

class CInfoListBox;
class CProcessingModes;

/// The choice of the image file to recover from. What was chosen is kept as long as the sheet lives.
class CwizardImageSelection : public CWizardPage {
    Q_DECLARE_TR_FUNCTIONS(CwizardImageSelection)

public:
    CwizardImageSelection(WizardState& state, WizardPageOwner& owner);

    void OnSetActive() override;
    int OnWizardNext() override;

    /// As if the user had picked this file.
    void ChooseImage(const QString& path);

private:
    void LayOut();
    void PickImage();
    void ShowFreeSpace();
    void TellOpeningFailed(ErrorCode code);

    QPushButton* pick_;
    QLabel* pathText_;
    QLabel* freeText_;
    QLabel* failure_;
    CProcessingModes* modes_;
    CInfoListBox* info_;
    std::string imagePath_; ///< empty as long as none is chosen
};

} // namespace thntfs
