#include "wizard/ProcessingModes.h"

#include "wizard/WizardState.h"

#include <QRadioButton>
#include <QVBoxLayout>

namespace thntfs {

CProcessingModes::CProcessingModes(QWidget* parent, WizardState& state, const QString& title)
    : QGroupBox(title, parent)
    , state_(state)
    , fromTable_(new QRadioButton(tr("&Display default partition(s)"), this))
    , bySearch_(new QRadioButton(tr("&Search for lost partition(s)"), this)) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fromTable_);
    layout->addWidget(bySearch_);
    fromTable_->setChecked(true);
    setFocusProxy(fromTable_);
    connect(bySearch_, &QRadioButton::toggled, this, [this] {
        setFocusProxy(bySearch_->isChecked() ? bySearch_ : fromTable_);
        Apply();
    });
}

void CProcessingModes::EnableChoice(bool enable) {
    fromTable_->setEnabled(enable);
    bySearch_->setEnabled(enable);
}

void CProcessingModes::Reset() {
    fromTable_->setChecked(true);
    Apply();
}

void CProcessingModes::Apply() { state_.ProcessingMode = bySearch_->isChecked() ? 1 : 0; }

} // namespace thntfs
