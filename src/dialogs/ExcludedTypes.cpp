#include "dialogs/ExcludedTypes.h"

#include "dialogs/NameRules.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace thntfs {

namespace {

constexpr QSize kListSize{260, 200};

} // namespace

QString FaultOfType(const QString& type, const QStringList& types) {
    if (type.isEmpty() || types.contains(type, Qt::CaseInsensitive)) {
        return QCoreApplication::translate("ExcludedTypes",
                                           "Text box is empty or entered file type already exists");
    }
    if (type.size() > kMaxTypeLength) {
        return QCoreApplication::translate(
            "ExcludedTypes", "Please enter file extension length less than or equals to 219 characters.");
    }
    return MayBeTyped(type) ? QString() : NameRuleText();
}

CExcludedTypes::CExcludedTypes(QWidget* owner, const QStringList& types)
    : QDialog(owner) {
    setWindowTitle(tr("Excluded File Types"));
    auto* list = new QListWidget(this);
    list->setObjectName(QStringLiteral("1061"));
    list->addItems(types);
    list->setCurrentRow(0);
    auto* label = new QLabel(tr("&File types to exclude:"), this);
    label->setBuddy(list);
    list->setAccessibleName(tr("File types to exclude"));
    auto* close = new QPushButton(tr("&Close"), this);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(list, 1);
    layout->addLayout(buttons);
    resize(kListSize);
}

} // namespace thntfs
