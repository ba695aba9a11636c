#pragma once

#include "wizard/WizardPage.h"

namespace thntfs {

class CRowTable;

/// The choice of the partition among the candidates of SourceDisk. Its Finish takes the chosen one into use.
class CWizardPartitionListPage : public CWizardPage {
public:
    explicit CWizardPartitionListPage(CWizardSheet& sheet);

    [[nodiscard]] QString CloseCaption() const override;
    void OnSetActive() override;
    [[nodiscard]] int OnWizardBack() const override;
    bool OnWizardFinish() override;

private:
    void Fill();
    void TakeSelection();
    [[nodiscard]] static bool LocateTable();

    CRowTable* list_;
    int selectedRow_ = -1;
};

} // namespace thntfs
