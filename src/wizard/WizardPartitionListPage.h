#pragma once

#include "partitions/VolumeList.h"
#include "wizard/WizardPage.h"

#include <QCoreApplication>
#include <vector>

namespace thntfs {

class CRowTable;

/// The choice of the partition among the candidates of SourceDisk. Its Finish takes the chosen one into use.
class CWizardPartitionListPage : public CWizardPage {
    Q_DECLARE_TR_FUNCTIONS(CWizardPartitionListPage)

public:
    CWizardPartitionListPage(WizardState& state, WizardPageOwner& owner);

    [[nodiscard]] QString CloseCaption() const override;
    void OnSetActive() override;
    [[nodiscard]] int OnWizardBack() const override;
    bool OnWizardFinish() override;

private:
    void Fill();
    void TakeSelection();

    CRowTable* list_;
    std::vector<ListedVolume> volumes_; ///< a row each, none where there are none
    int selectedRow_ = -1;
};

} // namespace thntfs
