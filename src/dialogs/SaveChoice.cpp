#include "dialogs/SaveChoice.h"

#include "dialogs/HelpViewer.h"
#include "shell/Icons.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace thntfs {

namespace {

void ShowChoiceHelp() { ShowHelp(QStringLiteral("whattosave.htm")); }

} // namespace

CSaveChoice::CSaveChoice(QWidget* owner, SaveWishes& wishes)
    : QDialog(owner)
    , wishes_(wishes)
    , exact_(new QRadioButton(tr("&Exact files"), this))
    , stored_(new QRadioButton(tr("Data as &stored"), this))
    , streams_(new QCheckBox(tr("&Named streams beside their files"), this))
    , reach_(new QComboBox(this)) {
    setWindowTitle(tr("What to save"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(MakeReadings());
    layout->addLayout(MakeReach());
    layout->addStretch();
    layout->addLayout(MakeButtons());
    (wishes.AsStored ? stored_ : exact_)->setChecked(true);
    exact_->setFocus();
    connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this, ShowChoiceHelp);
}

// The plain road knows no streams.
QWidget* CSaveChoice::MakeReadings() {
    auto* group = new QGroupBox(tr("How files are read"), this);
    exact_->setObjectName(QStringLiteral("1080"));
    stored_->setObjectName(QStringLiteral("1078"));
    streams_->setChecked(wishes_.Streams);
    connect(stored_, &QRadioButton::toggled, streams_, &QWidget::setDisabled);
    auto* indented = new QHBoxLayout;
    indented->addSpacing(fontMetrics().height());
    indented->addWidget(streams_);
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(exact_);
    layout->addLayout(indented);
    layout->addWidget(stored_);
    return group;
}

QLayout* CSaveChoice::MakeReach() {
    reach_->setObjectName(QStringLiteral("1086"));
    reach_->addItem(LoadIcon("save-all"), tr("All files"));
    reach_->addItem(LoadIcon("file-deleted"), tr("Deleted files only"));
    reach_->addItem(LoadIcon("file-live"), tr("Existing files only"));
    reach_->setCurrentIndex(static_cast<int>(wishes_.Reach));
    auto* label = new QLabel(tr("&Files to save:"), this);
    label->setBuddy(reach_);
    auto* layout = new QHBoxLayout;
    layout->addWidget(label);
    layout->addWidget(reach_, 1);
    return layout;
}

QLayout* CSaveChoice::MakeButtons() {
    auto* help = new QPushButton(tr("&Which one?"), this);
    help->setObjectName(QStringLiteral("1083"));
    help->setAutoDefault(false);
    connect(help, &QPushButton::clicked, this, ShowChoiceHelp);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QHBoxLayout;
    layout->addWidget(help);
    layout->addSpacing(fontMetrics().height());
    layout->addWidget(buttons, 1);
    return layout;
}

void CSaveChoice::accept() {
    wishes_.AsStored = stored_->isChecked();
    wishes_.Streams = streams_->isChecked();
    wishes_.Reach = static_cast<SaveReach>(reach_->currentIndex());
    QDialog::accept();
}

} // namespace thntfs
