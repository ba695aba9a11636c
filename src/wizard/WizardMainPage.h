#pragma once

#include "wizard/WizardPage.h"

#include <QCoreApplication>
#include <cstdint>

class QButtonGroup;

namespace thntfs {

class CInfoListBox;

/// The choice of the task.
class CWizardMainPage : public CWizardPage {
    Q_DECLARE_TR_FUNCTIONS(CWizardMainPage)

public:
    CWizardMainPage(WizardState& state, WizardPageOwner& owner);

    [[nodiscard]] QString HelpTopic() const override;
    void OnSetActive() override;
    int OnWizardNext() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void AddTaskButton(int task);
    void ChooseTask(std::uint8_t task);
    void ShowChosenTask();

    QButtonGroup* tasks_;
    CInfoListBox* info_ = nullptr;
};

} // namespace thntfs
