#include "wizard/WizardMainPage.h"

#include "shell/DesktopState.h"
#include "shell/Icons.h"
#include "wizard/PageTexts.h"
#include "wizard/WizardState.h"

#include <QButtonGroup>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QToolButton>
#include <array>

namespace thntfs {

namespace {

struct Task {
    const char* Text;
    const char* Icon;
    const char* HelpTopic;
    int Page;     ///< that does it
    bool Offered; ///< one that isn't has its button hidden
};

constexpr std::array<Task, 4> kTasks = {
    {{QT_TRANSLATE_NOOP("WizardMainPage", "  Recover &your Data"), "task-recover-disk", "ntfsrecoverdata.htm",
      kDriveSelectionPage, true},
     {QT_TRANSLATE_NOOP("WizardMainPage", "  Recover your data from disk &image"), "task-recover-image",
      "ntfsrecoverfromimage.htm", kImageSelectionPage, true},
     {QT_TRANSLATE_NOOP("WizardMainPage", "  &Clone disk"), "task-clone", "ntfsclonedisk.htm", kCloneDiskPage,
      false},
     {QT_TRANSLATE_NOOP("WizardMainPage", "  Create &disk Image"), "task-image", "ntfsdiskimaging.htm",
      kImageDiskPage, true}}};

// Flat, and with a chosen task that is seen under dark colours too.
constexpr const char* kTaskLook =
    "QToolButton { border: 1px solid transparent; border-radius: 3px; padding: 4px; }"
    "QToolButton:hover, QToolButton:focus { border-color: palette(highlight); }"
    "QToolButton:checked { background: palette(highlight); color: palette(highlighted-text); }";

constexpr QSize kTaskIconSize{48, 48};
constexpr QSize kBulletSize{15, 12};
constexpr QColor kTextColour{0x1E, 0x1E, 0x1E};
constexpr int kHeaderHeight = 16;
constexpr int kRowHeight = 14;

} // namespace

CWizardMainPage::CWizardMainPage(WizardState& state, WizardPageOwner& owner)
    : CWizardPage(state, owner, tr("Select appropriate Option"), "ntfswizardwin.htm")
    , tasks_(new QButtonGroup(this)) {
    auto* layout = new QHBoxLayout(this);
    auto* buttons = new QVBoxLayout;
    layout->addLayout(buttons, 1);
    for (int task = 0; task < static_cast<int>(kTasks.size()); ++task) {
        AddTaskButton(task);
        buttons->addWidget(tasks_->button(task));
    }
    buttons->addStretch();
    info_ = new CInfoListBox(this, kTextColour, kBulletSize); // behind the tasks for the tab key too
    layout->addWidget(info_);
    setFocusProxy(tasks_->button(kTaskRecoverDisk));
    connect(tasks_, &QButtonGroup::idClicked, this,
            [this](int task) { ChooseTask(static_cast<std::uint8_t>(task)); });
}

void CWizardMainPage::AddTaskButton(int task) {
    const Task& told = kTasks[static_cast<std::size_t>(task)];
    auto* button = new QToolButton(this);
    button->setText(QCoreApplication::translate("WizardMainPage", told.Text));
    button->setIcon(LoadIcon(told.Icon));
    button->setIconSize(kTaskIconSize);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setStyleSheet(QString::fromLatin1(kTaskLook));
    button->setCheckable(true);
    button->setEnabled(told.Offered);
    button->setHidden(!told.Offered);
    tasks_->addButton(button, task);
}

QString CWizardMainPage::HelpTopic() const {
    const std::uint8_t task = State().WizardTask;
    return task == kNoTask ? CWizardPage::HelpTopic() : QString::fromLatin1(kTasks.at(task).HelpTopic);
}

void CWizardMainPage::OnSetActive() {
    State().ProcessingMode = 0;
    State().PagesFresh = true;
    Desktop.StructuresMissing = false;
    ShowChosenTask();
}

int CWizardMainPage::OnWizardNext() {
    const std::uint8_t task = State().WizardTask;
    return task == kNoTask ? kStay : kTasks.at(task).Page;
}

// Enter on a task that isn't the chosen one chooses it; Next would go on with the other one.
void CWizardMainPage::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* task = qobject_cast<QToolButton*>(focusWidget());
    if (enter && task != nullptr && !task->isChecked()) {
        task->click();
    } else {
        CWizardPage::keyPressEvent(event);
    }
}

void CWizardMainPage::ChooseTask(std::uint8_t task) {
    State().WizardTask = task;
    ShowChosenTask();
}

void CWizardMainPage::ShowChosenTask() {
    const std::uint8_t task = State().WizardTask;
    if (task == kNoTask) {
        info_->ShowRows(RowsOf(kMainPageText), kHeaderHeight, kRowHeight);
        Owner().SetWizardButtons(0);
        return;
    }
    tasks_->button(task)->setChecked(true);
    info_->ShowRows(RowsOf(kTaskTexts.at(task)), kHeaderHeight, kRowHeight);
    Owner().SetWizardButtons(kButtonNext);
}

} // namespace thntfs
