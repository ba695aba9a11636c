#include "wizard/ChooseSectorRange.h"

#include "engine/EngineState.h"
#include "platform/system/SizeText.h"
#include "shell/ColorLabel.h"
#include "wizard/ScanArea.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <limits>

namespace thntfs {

namespace {

constexpr QColor kNumberColour{0x4D, 0x7C, 0x99};
constexpr int kBarHeight = 24;

constexpr const char* kStartTooLarge =
    QT_TRANSLATE_NOOP("ChooseSectorRange", "Start sector should be less than total sectors");
constexpr const char* kEndTooSmall =
    QT_TRANSLATE_NOOP("ChooseSectorRange", "End sector should be greater than start sector");
constexpr const char* kEndTooLarge =
    QT_TRANSLATE_NOOP("ChooseSectorRange", "End sector should be less than total sectors");

// A number too large for 64 bits is above every total, and so the largest will do.
std::uint64_t NumberIn(const QLineEdit& edit) {
    bool fits = false;
    const std::uint64_t number = edit.text().toULongLong(&fits);
    return fits || edit.text().isEmpty() ? number : std::numeric_limits<std::uint64_t>::max();
}

CColorLabel* BoldLabel(const QString& text, QWidget* parent) {
    auto* label = new CColorLabel(text, parent);
    label->SetBold(true);
    return label;
}

CColorLabel* NumberLabel(std::uint64_t number, QWidget* parent) {
    CColorLabel* label = BoldLabel(QString::number(number), parent);
    const bool dark = label->palette().color(QPalette::Window).lightness() < 128;
    label->SetTextColour(dark ? kNumberColour.lighter(170) : kNumberColour);
    return label;
}

QLineEdit* NumberEdit(std::uint64_t number, int digits, QWidget* parent) {
    auto* edit = new QLineEdit(QString::number(number), parent);
    edit->setMaxLength(digits);
    edit->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), edit));
    QObject::connect(edit, &QLineEdit::editingFinished, edit, [edit, number] {
        if (edit->text().isEmpty()) {
            edit->setText(QString::number(number));
        }
    });
    return edit;
}

} // namespace

CChooseSectorRange::CChooseSectorRange(QWidget* owner, std::uint64_t totalSectors)
    : QDialog(owner)
    , totalSectors_(totalSectors) {
    setWindowTitle(tr("Scan for logical drives"));
    MakeParts();
    LayOut();
    for (const QLineEdit* edit : {start_, end_}) {
        connect(edit, &QLineEdit::textChanged, this, [this] { Validate(); });
    }
    connect(ok_, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);
    Validate();
}

void CChooseSectorRange::MakeParts() {
    const auto digits = static_cast<int>(QString::number(totalSectors_).size());
    start_ = NumberEdit(0, digits, this);
    end_ = NumberEdit(totalSectors_, digits, this);
    size_ = new QLabel(this);
    size_->setMinimumWidth(fontMetrics().horizontalAdvance(
        QCoreApplication::translate("ChooseSectorRange", kEndTooSmall))); // the longest
    bar_ = new CScanArea(this);
    bar_->setMinimumHeight(kBarHeight);
    ok_ = new QPushButton(tr("OK"), this);
    ok_->setDefault(true);
    cancel_ = new QPushButton(tr("Cancel"), this);
}

void CChooseSectorRange::LayOut() {
    auto* form = new QFormLayout;
    form->addRow(tr("St&arting Sector"), start_);
    form->addRow(tr("&Ending Sector"), end_);
    form->addRow(tr("Scan Area"), size_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok_);
    buttons->addWidget(cancel_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(BoldLabel(tr("Please specify disk scan range"), this));
    layout->addLayout(DefaultRangeLine());
    layout->addSpacing(8);
    layout->addLayout(form);
    layout->addWidget(bar_);
    layout->addLayout(LegendLine());
    layout->addStretch();
    layout->addLayout(buttons);
}

QLayout* CChooseSectorRange::DefaultRangeLine() {
    auto* line = new QHBoxLayout;
    line->addWidget(BoldLabel(tr("Default Range"), this));
    line->addSpacing(12);
    line->addWidget(NumberLabel(0, this));
    line->addWidget(BoldLabel(tr("to"), this));
    line->addWidget(NumberLabel(totalSectors_, this));
    line->addWidget(BoldLabel(tr("sectors"), this));
    line->addStretch();
    return line;
}

QLayout* CChooseSectorRange::LegendLine() {
    auto* scanned = new CScanArea(this);
    auto* excluded = new CScanArea(this);
    scanned->SetRange(0, 98);
    excluded->SetRange(1, 0);
    auto* line = new QHBoxLayout;
    line->addWidget(scanned);
    line->addWidget(new QLabel(tr("Scan Area"), this));
    line->addSpacing(16);
    line->addWidget(excluded);
    line->addWidget(new QLabel(tr("Excluded Area"), this));
    line->addStretch();
    return line;
}

void CChooseSectorRange::Validate() {
    StartSector = NumberIn(*start_);
    EndSector = NumberIn(*end_);
    if (StartSector >= totalSectors_) {
        ShowFault(kStartTooLarge, start_);
    } else if (EndSector <= StartSector) {
        ShowFault(kEndTooSmall, end_);
    } else if (EndSector > totalSectors_) {
        ShowFault(kEndTooLarge, end_);
    } else {
        ShowRange();
    }
}

void CChooseSectorRange::ShowFault(const char* text, QLineEdit* faulty) {
    size_->setText(QCoreApplication::translate("ChooseSectorRange", text));
    bar_->SetRange(1, 0);
    ok_->setEnabled(false);
    faulty->setFocus();
}

void CChooseSectorRange::ShowRange() {
    size_->setText(QString::fromStdString(
        StretchSizeText((EndSector - StartSector) * Engine.SourceDisk.BytesPerSector)));
    bar_->SetRange(PercentOf(StartSector), PercentOf(EndSector));
    ok_->setEnabled(true);
}

int CChooseSectorRange::PercentOf(std::uint64_t sector) const {
    return static_cast<int>(static_cast<double>(sector) / static_cast<double>(totalSectors_) * 100 + 0.49);
}

// Enter comes here past the button, and an edit that it leaves empty has just been filled again.
void CChooseSectorRange::accept() {
    if (ok_->isEnabled()) {
        QDialog::accept();
    }
}

} // namespace thntfs
