#include "wizard/WizardPage.h"

#include "wizard/WizardState.h"

#include <utility>

namespace thntfs {

CWizardPage::CWizardPage(WizardState& state, WizardPageOwner& owner, QString heading, const char* helpTopic)
    : state_(state)
    , owner_(owner)
    , heading_(std::move(heading))
    , helpTopic_(helpTopic) {}

QString CWizardPage::Heading() const { return heading_; }
QString CWizardPage::HelpTopic() const { return QString::fromLatin1(helpTopic_); }
QString CWizardPage::CloseCaption() const { return tr("Confirm"); }

void CWizardPage::OnDisksChanged() {}
int CWizardPage::OnWizardBack() const { return kMainPage; }
int CWizardPage::OnWizardNext() { return kStay; }
bool CWizardPage::OnWizardFinish() { return false; }

void CWizardPage::OfferNext(bool offered) {
    owner_.SetWizardButtons(offered ? kButtonBack | kButtonNext : kButtonBack);
}

void CWizardPage::OfferFinish(bool offered) {
    const unsigned finish = offered ? kButtonFinish : kButtonDisabledFinish;
    owner_.SetWizardButtons(state_.ListPageOnly ? finish : finish | kButtonBack);
}

} // namespace thntfs
