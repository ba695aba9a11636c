#include "views/ListPane.h"

#include "content/TargetRules.h"
#include "engine/EngineState.h"
#include "partitions/ExamineVolumes.h"
#include "platform/system/SizeText.h"
#include "shell/ShownName.h"
#include "views/FilterBar.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <QVBoxLayout>
#include <utility>

namespace thntfs {

namespace {

constexpr int kLineGap = 2;

// The label and the size.
QString VolumeInWorkText() {
    const VolumeParams& volume = Engine.VolumeParams;
    const QString size = QString::fromStdString(ByteText(volume.TotalSectors * volume.BytesPerSector));
    const std::u16string label = LabelOfVolumeInWork();
    return (label.empty() ? QCoreApplication::translate("ListPane", "NTFS") : ShownName(label)) +
           QStringLiteral(" (%1)").arg(size);
}

} // namespace

CListPane::CListPane(QWidget* parent, CTHNTFSTreeView& tree)
    : QWidget(parent)
    , tree_(tree)
    , path_(new CPathLine(this, [this](std::uint32_t entryId) { tree_.GoToFolder(entryId); }))
    , filter_(new CFilterBar(this, [this](const RowFilter& filter) { list_->Narrow(filter); }))
    , list_(new CTHNTFSListView(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kLineGap);
    layout->addWidget(path_);
    layout->addWidget(filter_);
    layout->addWidget(list_, 1);
    filter_->SetList(list_);
    list_->SetBackTabTarget(filter_->LastTabStop());
    list_->SetOnChanged([this] { ShowState(); });
    ShowState();
}

void CListPane::TakeVolume() {
    const QString path = QString::fromStdString(SourceMediumPath());
    medium_ = {path.section(QLatin1Char('/'), -1), path, kRootEntryId};
    volume_ = {VolumeInWorkText(), {}, kRootEntryId};
    list_->Narrow({}); // what was looked for on another one hides even the first row of this one
}

void CListPane::ShowState() {
    filter_->Show(list_->Filter(), list_->RowCount(), list_->CountOfAll());
    ShowPath();
}

void CListPane::ShowPath() {
    if (!list_->ShownFolder() && !list_->ShowsHits()) {
        path_->Show({}, {});
        return;
    }
    std::vector<PathPart> parts{medium_, volume_};
    QString last = list_->HitsTitle();
    if (list_->ShowsHits()) {
        parts.push_back({last, {}, tree_.CurrentEntry()});
    } else {
        for (auto& step : tree_.WayTo(*list_->ShownFolder())) {
            parts.push_back({std::move(step.Name), {}, step.EntryId});
        }
        last = tree_.PathOf(*list_->ShownFolder());
    }
    QStringList whole{medium_.Tip, volume_.Text, last};
    whole.removeAll(QString()); // the top has no path
    path_->Show(parts, whole.join(QStringLiteral(" › ")));
}

} // namespace thntfs
