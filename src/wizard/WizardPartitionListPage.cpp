#include "wizard/WizardPartitionListPage.h"

#include "engine/ClusterSize.h"
#include "engine/EngineState.h"
#include "partitions/ExamineVolumes.h"
#include "platform/system/SizeText.h"
#include "scaninfo/JobLog.h"
#include "shell/Boxes.h"
#include "shell/CoreTexts.h"
#include "shell/DesktopState.h"
#include "shell/Icons.h"
#include "shell/WaitCursor.h"
#include "wizard/RowTable.h"
#include "wizard/SourceSteps.h"
#include "wizard/WizardState.h"

#include <QCoreApplication>
#include <QVBoxLayout>

namespace thntfs {

namespace {

constexpr int kListWidth = 121; // in letters, for all columns

QStringList RowTexts(const QString& name, const QString& start, std::uint64_t bytes) {
    return {name, start, QString::fromStdString(SizeText(bytes))};
}

QString LowSector(std::uint64_t sector) { return QString::number(static_cast<std::uint32_t>(sector)); }

QString StartText(const PartitionCandidate& volume) {
    const std::uint64_t before = SectorsBeforeMedium(volume);
    return before == 0
               ? LowSector(volume.StartSector)
               : QCoreApplication::translate("WizardPartitionListPage", "%1 before the medium").arg(before);
}

/// A label may hold anything.
QString ShownLabel(const std::u16string& label) {
    QString shown = QString::fromStdU16String(label);
    for (QChar& unit : shown) {
        unit = unit.isPrint() || unit.isSurrogate() ? unit : QChar(QChar::ReplacementCharacter);
    }
    return shown;
}

QStringList FactTexts(const VolumeFacts& facts) {
    return {facts.Verified ? QCoreApplication::translate("WizardPartitionListPage", "Yes")
                           : QCoreApplication::translate("WizardPartitionListPage", "No"),
            ShownCoreText(SourceText(facts.Source)), ShownLabel(facts.Label),
            facts.Verified ? QString::number(facts.Records) : QString()};
}

QStringList RowTexts(const ListedVolume& volume) {
    if (volume.Candidate != nullptr) {
        return RowTexts(QCoreApplication::translate("WizardPartitionListPage", "NTFS logical drive %1")
                            .arg(volume.Number),
                        StartText(*volume.Candidate),
                        volume.Candidate->TotalSectors * volume.Candidate->BytesPerSector) +
               FactTexts(volume.Facts);
    }
    const QString problem = ShownCoreText(ProblemText(volume.Entry.State));
    return RowTexts(QCoreApplication::translate("WizardPartitionListPage", "Logical drive %1: %2")
                        .arg(volume.Number)
                        .arg(problem),
                    LowSector(volume.Entry.StartSector),
                    volume.Entry.TotalSectors * Engine.SourceDisk.BytesPerSector) +
           QStringList{QString(), ShownCoreText(SourceText(volume.Entry.Source)), QString(), QString()};
}

void Warn(const QString& text) {
    ShowBox(text, QCoreApplication::translate("WizardPartitionListPage", "Information"), BoxIcon::Warning);
}

bool LocateTableOfVolume() {
    const WaitCursor slow; // a failing disk takes its time
    return LocateTable();
}

/// Whether the volume that has been taken into use can be. A box tells why not.
bool CanBeScanned() {
    if (const std::string fault = ClusterFault(); !fault.empty()) {
        Warn(QCoreApplication::translate("WizardPartitionListPage",
                                         "%1\n\nPlease use search for lost partition(s).")
                 .arg(QString::fromStdString(fault)));
        return false;
    }
    if (!LocateTableOfVolume()) {
        Warn(QCoreApplication::translate(
            "WizardPartitionListPage",
            "Critical structures not found.\nPlease cancel wizard and use Turbo Scan\n\n"
            "Tools->Turbo Scan."));
        Desktop.StructuresMissing = true;
        return false;
    }
    return true;
}

} // namespace

CWizardPartitionListPage::CWizardPartitionListPage(WizardState& state, WizardPageOwner& owner)
    : CWizardPage(state, owner, tr("Select the partition to recover"), "ntfsrecoverdata.htm")
    , list_(new CRowTable(this, {tr("Name"), tr("Start Sector"), tr("Size"), tr("Verified"), tr("Found by"),
                                 tr("Label"), tr("Records")})) {
    list_->setAccessibleName(tr("Logical drives"));
    list_->setMinimumWidth(kListWidth * fontMetrics().averageCharWidth());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list_);
    setFocusProxy(list_);
    connect(list_, &QTableWidget::itemSelectionChanged, this, [this] { TakeSelection(); });
    connect(list_, &QTableWidget::cellClicked, this,
            [this] { State().LogicalDriveNumber = static_cast<std::uint8_t>(selectedRow_); });
    connect(list_, &QTableWidget::cellDoubleClicked, this, [this] { Owner().PressFinish(); });
}

QString CWizardPartitionListPage::CloseCaption() const { return tr("Volume Salvage (NTFS)"); }

void CWizardPartitionListPage::OnSetActive() {
    Desktop.ProcessingMode = State().ProcessingMode;
    Fill();
    TakeSelection();
}

void CWizardPartitionListPage::Fill() {
    list_->setRowCount(0);
    volumes_.clear();
    const bool any = !Engine.SourceDisk.Partitions.empty();
    list_->setEnabled(any);
    if (!any) {
        list_->AddRow({tr("No Logical Drives Found")});
        for (const ListedVolume& volume : ListVolumes()) { // which tell why
            list_->AddRow(RowTexts(volume), LoadIcon("disk"), false);
        }
        return;
    }
    {
        const WaitCursor slow;
        ExamineVolumes([] { return true; }); // those of a saved list, or behind an aborted search
    }
    volumes_ = ListVolumes();
    for (const ListedVolume& volume : volumes_) {
        list_->AddRow(RowTexts(volume), LoadIcon("disk"), volume.Candidate != nullptr);
    }
}

void CWizardPartitionListPage::TakeSelection() {
    selectedRow_ = list_->SelectedRow();
    OfferFinish(selectedRow_ >= 0);
}

int CWizardPartitionListPage::OnWizardBack() const {
    return State().WizardTask == kTaskRecoverDisk ? kDriveSelectionPage : kImageSelectionPage;
}

bool CWizardPartitionListPage::OnWizardFinish() {
    if (!GiveUpOldScan()) {
        return false;
    }
    const ListedVolume& chosen = volumes_.at(static_cast<std::size_t>(selectedRow_));
    State().WizardLogEntry = PartitionChosenEntry(chosen.Number, *chosen.Candidate);
    LoadVolumeParams(*chosen.Candidate);
    if (!CanBeScanned()) {
        return false;
    }
    State().LogicalDriveNumber = static_cast<std::uint8_t>(chosen.Number % 10);
    Host().LogEvent(State().WizardLogEntry);
    return true;
}

} // namespace thntfs
