#include "properties/PropertiesSheet.h"

#include "catalogue/CatalogueReader.h"
#include "properties/PropertiesTabCtrl.h"
#include "shell/ShownName.h"
#include "shell/WindowMessages.h"
#include "shell/WindowTitle.h"

#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace thntfs {

namespace {

constexpr int kStoppedResult = -1;
constexpr double kLargestShare = 0.9; // of the screen
constexpr QSize kSheetSize{520, 620};

} // namespace

CPropertiesSheet::CPropertiesSheet(QWidget* parent, std::uint32_t entryId)
    : QDialog(parent) {
    auto* layout = new QVBoxLayout(this);
    if (const auto entry = LoadEntry(entryId)) {
        setWindowTitle(LiteralTitle(tr("%1 Properties").arg(ShownName(entry->Name))));
        tab_ = new CPropertiesTabCtrl(*entry, *this, this);
        layout->addWidget(tab_, 1);
    }
    auto* close = new QPushButton(tr("&Close"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, [this] { done(Accepted); });
    layout->addWidget(close, 0, Qt::AlignRight);
    resize(kSheetSize.boundedTo(screen()->availableSize() * kLargestShare));
    close->setFocus();
}

std::intptr_t CPropertiesSheet::OnMessage(std::uint32_t message, std::uintptr_t /*wParam*/,
                                          std::uintptr_t /*lParam*/) {
    if (message == WM_PROPS_CLOSE) {
        QDialog::done(kStoppedResult);
    }
    return 0;
}

// All ways of closing lead here.
void CPropertiesSheet::done(int result) {
    if (tab_ == nullptr || !tab_->Stop()) {
        QDialog::done(result);
    }
}

} // namespace thntfs
