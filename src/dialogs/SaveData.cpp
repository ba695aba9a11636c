#include "dialogs/SaveData.h"

#include "dialogs/ExcludedTypes.h"
#include "dialogs/FileDialogs.h"
#include "dialogs/NameRules.h"
#include "shell/Boxes.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace thntfs {

namespace {

constexpr int kPathLetters = 60; // of the folder's path that show
constexpr int kMaxPrefix = 100;

void Warn(const QString& text) {
    ShowBox(text, QCoreApplication::translate("SaveData", "Warning"), BoxIcon::Warning);
}

template <typename Widget>
Widget* Named(Widget* widget, int id) {
    widget->setObjectName(QString::number(id));
    return widget;
}

} // namespace

CSaveData::CSaveData(QWidget* owner, SaveWishes& wishes, MaySave maySave)
    : QDialog(owner)
    , wishes_(wishes)
    , maySave_(std::move(maySave))
    , types_(wishes.Types) {
    setWindowTitle(tr("Save data to local drive"));
    MakeParts();
    LayOut();
    connect(browse_, &QPushButton::clicked, this, [this] { Browse(); });
    connect(add_, &QPushButton::clicked, this, [this] { AddType(); });
    connect(view_, &QPushButton::clicked, this, [this] { CExcludedTypes(this, types_).exec(); });
    connect(clear_, &QPushButton::clicked, this, [this] {
        types_.clear();
        ShowTypes();
    });
    for (QWidget* part : std::initializer_list<QWidget*>{type_, add_, view_, clear_}) {
        part->setEnabled(wishes.IgnoresTypes);
        connect(ignores_, &QCheckBox::toggled, part, &QWidget::setEnabled);
    }
    prefix_->setEnabled(wishes.UsesPrefix);
    connect(usesPrefix_, &QCheckBox::toggled, prefix_, &QWidget::setEnabled);
    ShowTypes();
    folder_->setFocus();
}

void CSaveData::MakeParts() {
    folder_ = Named(new QLineEdit(wishes_.Folder, this), 1092);
    folder_->setMinimumWidth(kPathLetters * fontMetrics().averageCharWidth());
    browse_ = Named(new QPushButton(QStringLiteral("..."), this), 1093);
    browse_->setAccessibleName(tr("Browse"));
    browse_->setFixedWidth(browse_->sizeHint().height() * 2);
    ignores_ = Named(new QCheckBox(tr("&Ignore these file types before saving"), this), 1052);
    ignores_->setChecked(wishes_.IgnoresTypes);
    type_ = Named(new QLineEdit(this), 1057);
    add_ = Named(new QPushButton(tr("&Add to list"), this), 1055);
    view_ = Named(new QPushButton(tr("&View List"), this), 1059);
    clear_ = Named(new QPushButton(tr("&Clear List"), this), 1063);
    compresses_ = Named(new QCheckBox(tr("&Compress Data"), this), 1031);
    compresses_->setChecked(wishes_.Compresses);
    usesPrefix_ = Named(new QCheckBox(tr("Default prefix to rename files"), this), 1131);
    usesPrefix_->setChecked(wishes_.UsesPrefix);
    prefix_ = Named(new QLineEdit(wishes_.Prefix, this), 1132);
    prefix_->setMaxLength(kMaxPrefix);
    prefix_->setAccessibleName(tr("Prefix"));
    for (QPushButton* button : {browse_, add_, view_, clear_}) {
        button->setAutoDefault(false);
    }
}

void CSaveData::LayOut() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(LocationLines());
    layout->addWidget(TypeBox());
    layout->addWidget(compresses_);
    layout->addLayout(PrefixLine());
    layout->addStretch();
    layout->addWidget(buttons);
}

QLayout* CSaveData::LocationLines() {
    auto* label = Named(new QLabel(tr("&Provide location to save data:"), this), 1032);
    label->setBuddy(folder_);
    auto* line = new QHBoxLayout;
    line->addWidget(folder_, 1);
    line->addWidget(browse_);
    auto* layout = new QVBoxLayout;
    layout->addWidget(label);
    layout->addLayout(line);
    return layout;
}

QWidget* CSaveData::TypeBox() {
    auto* box = new QGroupBox(this);
    auto* label = Named(new QLabel(tr("Enter extension e.g. doc"), this), 1085);
    label->setBuddy(type_);
    auto* entry = new QHBoxLayout;
    entry->addWidget(type_, 1);
    entry->addWidget(label);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {add_, view_, clear_}) {
        buttons->addWidget(button);
    }
    buttons->addStretch();
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(ignores_);
    layout->addLayout(entry);
    layout->addLayout(buttons);
    return box;
}

QLayout* CSaveData::PrefixLine() {
    auto* line = new QHBoxLayout;
    line->addWidget(usesPrefix_);
    line->addWidget(prefix_, 1);
    return line;
}

// Enter in the line of a file type adds it; elsewhere it means OK.
void CSaveData::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && focusWidget() == type_) {
        AddType();
        return;
    }
    QDialog::keyPressEvent(event);
}

void CSaveData::Browse() {
    const QString folder = ChooseFolder(this, tr("Save data to"), FolderTyped());
    if (!folder.isEmpty()) {
        folder_->setText(folder);
    }
    folder_->setFocus();
}

void CSaveData::AddType() {
    const QString type = type_->text();
    const QString fault = FaultOfType(type, types_);
    if (!fault.isEmpty()) {
        Warn(fault);
        type_->selectAll();
        return;
    }
    types_.append(type);
    type_->clear();
    ShowTypes();
}

void CSaveData::ShowTypes() {
    view_->setToolTip(types_.isEmpty() ? tr("The list is empty") : tr("%1 on the list").arg(types_.size()));
}

// As a shell would take it. Without a folder in front a name is one of the user's own folder.
QString CSaveData::FolderTyped() const {
    const QString typed = folder_->text().trimmed();
    if (typed.isEmpty()) {
        return {};
    }
    const bool home = typed == QLatin1String("~") || typed.startsWith(QLatin1String("~/"));
    return QDir::cleanPath(QDir::home().absoluteFilePath(home ? QDir::homePath() + typed.mid(1) : typed));
}

QString CSaveData::PrefixFault() const {
    if (!usesPrefix_->isChecked()) {
        return {};
    }
    if (prefix_->text().isEmpty()) {
        return tr("Please enter the prefix.");
    }
    return MayBeTyped(prefix_->text()) ? QString() : NameRuleText();
}

void CSaveData::accept() {
    const QString folder = FolderTyped();
    if (folder.isEmpty()) {
        Warn(tr("Please provide a location to save data."));
        folder_->setFocus();
        return;
    }
    if (const QString fault = PrefixFault(); !fault.isEmpty()) {
        Warn(fault);
        prefix_->setFocus();
        return;
    }
    if (!maySave_(folder, compresses_->isChecked())) {
        folder_->setFocus();
        return;
    }
    wishes_.Folder = folder;
    wishes_.IgnoresTypes = ignores_->isChecked();
    wishes_.Types = types_;
    wishes_.Compresses = compresses_->isChecked();
    wishes_.UsesPrefix = usesPrefix_->isChecked();
    wishes_.Prefix = prefix_->text();
    QDialog::accept();
}

} // namespace thntfs
