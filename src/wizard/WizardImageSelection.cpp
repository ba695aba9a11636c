#include "wizard/WizardImageSelection.h"

#include "dialogs/FileDialogs.h"
#include "partitions/OpenSource.h"
#include "platform/files/Paths.h"
#include "scaninfo/JobLog.h"
#include "shell/CoreTexts.h"
#include "shell/Icons.h"
#include "shell/TipText.h"
#include "wizard/ElidedLabel.h"
#include "wizard/PageTexts.h"
#include "wizard/ProcessingModes.h"
#include "wizard/SourceSteps.h"
#include "wizard/WizardState.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace thntfs {

namespace {

constexpr QSize kPickIconSize{32, 32};

/// What files with a disk in them are named, in small letters and in capitals.
QString ImagePatterns() {
    const QString small =
        QStringLiteral("*.dd *.raw *.img *.bin *.001 *.e01 *.ex01 *.s01 *.vhd *.vhdx *.vmdk "
                       "*.qcow2 *.th2");
    return small + QLatin1Char(' ') + small.toUpper().remove(QStringLiteral(" *.001"));
}

} // namespace

CwizardImageSelection::CwizardImageSelection(WizardState& state, WizardPageOwner& owner)
    : CWizardPage(state, owner, tr("Select image to recover data"), "ntfsselectanimagefileforproce.htm")
    , pick_(new QPushButton(LoadIcon("select-image"), tr("Select &Image File"), this))
    , pathText_(new CElidedLabel(tr("Selected File Path"), this))
    , freeText_(new QLabel(tr("Spcae available"), this))
    , failure_(new QLabel(this))
    , modes_(new CProcessingModes(this, state, tr("Image Processing Mode")))
    , info_(new CInfoListBox(this)) {
    pick_->setIconSize(kPickIconSize);
    pathText_->setEnabled(false);
    freeText_->setEnabled(false);
    failure_->setTextFormat(Qt::PlainText);
    failure_->setWordWrap(true);
    modes_->EnableChoice(false);
    info_->ShowRows(RowsOf(kImagePageText));
    LayOut();
    setFocusProxy(pick_);
    connect(pick_, &QPushButton::clicked, this, [this] { PickImage(); });
}

void CwizardImageSelection::LayOut() {
    auto* layout = new QHBoxLayout(this);
    auto* choices = new QVBoxLayout;
    layout->addLayout(choices, 1);
    layout->addWidget(info_);
    choices->addWidget(pick_, 0, Qt::AlignLeft);
    choices->addWidget(pathText_);
    choices->addWidget(freeText_);
    choices->addWidget(failure_);
    choices->addStretch();
    choices->addWidget(modes_);
}

// The main page has put the mode back, but not what is checked here. Without a file the buttons stay
// as the page before has left them.
void CwizardImageSelection::OnSetActive() {
    modes_->Apply();
    if (!imagePath_.empty()) {
        OfferNext(true);
    }
}

void CwizardImageSelection::PickImage() {
    const QString path =
        ChooseFileToOpen(this, tr("Select Image File"),
                         tr("Volume Salvage (NTFS) Image File (*.th2);;All files (*)") +
                             QStringLiteral(";;%1 (%2)").arg(tr("All disk images"), ImagePatterns()),
                         FileKind::Image);
    if (!path.isEmpty()) {
        ChooseImage(path);
    }
}

void CwizardImageSelection::ChooseImage(const QString& path) {
    imagePath_ = path.toStdString();
    pathText_->setText(tr("File Path :%1").arg(path));
    pathText_->setToolTip(TipText(path));
    pathText_->setEnabled(true);
    freeText_->setEnabled(true);
    failure_->clear();
    ShowFreeSpace();
    modes_->EnableChoice(true);
    setFocusProxy(modes_); // Enter goes on, and doesn't ask for the file again
    setFocus();
    OfferNext(true);
}

void CwizardImageSelection::ShowFreeSpace() {
    const auto freeBytes = FreeBytesAt(imagePath_);
    freeText_->setText(freeBytes ? tr("Space Available : %1 bytes").arg(*freeBytes)
                                 : tr("Space Available : unknown"));
}

int CwizardImageSelection::OnWizardNext() {
    failure_->clear();
    if (imagePath_.empty()) {
        failure_->setText(tr("Choose an image file first, by the button above."));
        setFocus();
        return kStay;
    }
    if (!CloseOldMedium()) {
        return kStay;
    }
    const ErrorCode code = OpenSource(imagePath_); // the command line may have named a disk
    if (code != kErrorNone) {
        TellOpeningFailed(code);
        return kStay;
    }
    const std::string path = AbsolutePath(imagePath_);
    const ChosenSource image{path, tr("Please use search for lost partition(s)."),
                             [path](bool searched) { LogImageChosen(path, searched); }};
    return ListPartitions(image, State().ProcessingMode, window()) ? kPartitionListPage : kStay;
}

void CwizardImageSelection::TellOpeningFailed(ErrorCode code) {
    failure_->setText(tr("The file can't be opened: %1").arg(ShownCoreText(OpenErrorText(code))));
}

} // namespace thntfs
