#include "dialogs/RenameFile.h"

#include "dialogs/NameRules.h"
#include "shell/Boxes.h"
#include "shell/TipText.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace thntfs {

namespace {

constexpr int kNameLetters = 60; // of the name that show

QString FaultOfName(const QString& name) {
    if (name.isEmpty()) {
        return QCoreApplication::translate("RenameFile", "Please enter the new name.");
    }
    return HoldsAnyOf(name, kForbiddenInNames)
               ? QCoreApplication::translate(
                     "RenameFile", "A file/ folder cannot contain following special characters:\n%1")
                     .arg(QLatin1String("\\/ : * ? \" < > |"))
               : QString();
}

} // namespace

CRenameFile::CRenameFile(QWidget* owner, const QString& name, const QString& why, const QString& suggestion)
    : QDialog(owner)
    , newName_(new QLineEdit(suggestion, this)) {
    setWindowTitle(tr("Rename"));
    auto* label = new QLabel(tr("&New Name"), this);
    label->setBuddy(newName_);
    newName_->setObjectName(QStringLiteral("1094"));
    newName_->selectAll();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(Texts(name, why));
    layout->addSpacing(fontMetrics().height());
    layout->addWidget(label);
    layout->addWidget(newName_);
    layout->addStretch();
    layout->addLayout(Buttons());
    newName_->setFocus();
}

QLayout* CRenameFile::Texts(const QString& name, const QString& why) {
    const int width = kNameLetters * fontMetrics().averageCharWidth();
    auto* nameLabel = new QLabel(fontMetrics().elidedText(name, Qt::ElideMiddle, width), this);
    nameLabel->setObjectName(QStringLiteral("1095"));
    nameLabel->setTextFormat(Qt::PlainText);
    nameLabel->setToolTip(TipText(name));
    nameLabel->setAccessibleName(name);
    auto* whyLabel = new QLabel(tr("please provide new name ( %1 )").arg(why), this);
    whyLabel->setObjectName(QStringLiteral("1132"));
    whyLabel->setMinimumWidth(width);
    auto* layout = new QVBoxLayout;
    layout->addWidget(nameLabel);
    layout->addWidget(whyLabel);
    return layout;
}

// The last button's text has two signs, of which the toolkit would take the first for its key.
QLayout* CRenameFile::Buttons() {
    struct Choice {
        Answer What;
        int Id;
        QString Text;
    };
    auto* line = new QHBoxLayout;
    line->addStretch();
    for (const Choice& choice :
         {Choice{Answer::Rename, 1, tr("&Rename")}, Choice{Answer::RenameAll, 1142, tr("R&ename All")},
          Choice{Answer::Skip, 1138, tr("&Skip")}, Choice{Answer::SkipAll, 1139, tr("&Skip &All")}}) {
        auto* button = new QPushButton(choice.Text, this);
        button->setObjectName(QString::number(choice.Id));
        button->setDefault(choice.What == Answer::Rename);
        if (choice.What == Answer::SkipAll) {
            button->setShortcut(Qt::ALT | Qt::Key_A);
        }
        connect(button, &QPushButton::clicked, this, [this, answer = choice.What] { Choose(answer); });
        line->addWidget(button);
    }
    return line;
}

QString CRenameFile::NewName() const { return newName_->text(); }

void CRenameFile::Choose(Answer answer) {
    const bool renames = answer == Answer::Rename || answer == Answer::RenameAll;
    const QString fault = renames ? FaultOfName(NewName()) : QString();
    if (!fault.isEmpty()) {
        ShowBox(fault, tr("Warning"), BoxIcon::Warning);
        newName_->setFocus();
        return;
    }
    chosen_ = answer;
    accept();
}

} // namespace thntfs
