#include "dialogs/SaveListChoice.h"

#include "shell/TipText.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLocale>
#include <QRadioButton>
#include <QVBoxLayout>

namespace thntfs {

namespace {

constexpr int kFolderLetters = 40;

} // namespace

CSaveListChoice::CSaveListChoice(QWidget* owner, int rows, const QString& folder)
    : QDialog(owner)
    , shown_(new QRadioButton(this))
    , below_(new QRadioButton(this))
    , table_(new QRadioButton(tr("&Table for spreadsheets (.csv)"), this))
    , bodyFile_(new QRadioButton(tr("&Body file for tools that lay out times"), this)) {
    setWindowTitle(tr("Save list"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(MakeReach(rows, folder));
    layout->addWidget(MakeForm());
    layout->addStretch();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    (rows > 0 ? shown_ : below_)->setChecked(true);
    (rows > 0 ? shown_ : below_)->setFocus();
    table_->setChecked(true);
}

QWidget* CSaveListChoice::MakeReach(int rows, const QString& folder) {
    auto* group = new QGroupBox(tr("What the list holds"), this);
    shown_->setText(tr("The &rows that are shown: %1").arg(QLocale().toString(rows)));
    shown_->setEnabled(rows > 0);
    const int room = fontMetrics().averageCharWidth() * kFolderLetters;
    QString name = fontMetrics().elidedText(folder, Qt::ElideMiddle, room);
    name.replace(QLatin1Char('&'), QLatin1String("&&"));
    below_->setText(folder.isEmpty() ? tr("A folder with &all below it")
                                     : tr("%1 with &all below it").arg(name));
    below_->setToolTip(TipText(folder));
    below_->setEnabled(!folder.isEmpty());
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(shown_);
    layout->addWidget(below_);
    return group;
}

QWidget* CSaveListChoice::MakeForm() {
    auto* group = new QGroupBox(tr("How it is written"), this);
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(table_);
    layout->addWidget(bodyFile_);
    bodyFile_->setToolTip(tr("Each file's record is read again for its four times"));
    return group;
}

SaveListWish CSaveListChoice::Wish() const { return {below_->isChecked(), bodyFile_->isChecked()}; }

} // namespace thntfs
