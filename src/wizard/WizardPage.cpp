#include "wizard/WizardPage.h"

namespace thntfs {

CWizardPage::CWizardPage(CWizardSheet& sheet, const char* heading, const char* helpTopic)
    : sheet_(sheet)
    , heading_(heading)
    , helpTopic_(helpTopic) {}

QString CWizardPage::Heading() const { return QString::fromLatin1(heading_); }
QString CWizardPage::HelpTopic() const { return QString::fromLatin1(helpTopic_); }
QString CWizardPage::CloseCaption() const { return QStringLiteral("Confirm"); }

int CWizardPage::OnWizardBack() const { return kMainPage; }
int CWizardPage::OnWizardNext() { return kStay; }
bool CWizardPage::OnWizardFinish() { return false; }

} // namespace thntfs
