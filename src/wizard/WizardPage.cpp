#include "wizard/WizardPage.h"

#include "wizard/WizardState.h"

namespace thntfs {

CWizardPage::CWizardPage(WizardState& state, WizardPageOwner& owner, const char* heading,
                         const char* helpTopic)
    : state_(state)
    , owner_(owner)
    , heading_(heading)
    , helpTopic_(helpTopic) {}

QString CWizardPage::Heading() const { return QString::fromLatin1(heading_); }
QString CWizardPage::HelpTopic() const { return QString::fromLatin1(helpTopic_); }
QString CWizardPage::CloseCaption() const { return QStringLiteral("Confirm"); }

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
