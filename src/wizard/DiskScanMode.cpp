#include "wizard/DiskScanMode.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

namespace thntfs {

namespace {

constexpr int kWidth = 40; // in letters

} // namespace

CDiskScanMode::CDiskScanMode(QWidget* owner)
    : QDialog(owner) {
    setWindowTitle(tr("Disk Scan Mode"));
    auto* group = new QGroupBox(tr("&Select Search Method"), this);
    auto* quick = new QRadioButton(tr("&Quick Scan"), group);
    auto* thorough = new QRadioButton(tr("&Thorough Scan"), group);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* choices = new QVBoxLayout(group);
    choices->addWidget(quick);
    choices->addWidget(thorough);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addWidget(buttons);
    quick->setChecked(true);
    connect(thorough, &QRadioButton::toggled, this,
            [this](bool checked) { ScanMethod = checked ? SearchMethod::Thorough : SearchMethod::Quick; });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    setMinimumWidth(kWidth * fontMetrics().averageCharWidth()); // for the title
}

} // namespace thntfs
