#include "views/DetailsView.h"

#include "views/FileDelegate.h"
#include "views/FileListModel.h"

#include <QHeaderView>
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace thntfs {

namespace {

constexpr std::array<int, FileListModel::kColumns> kWidths{200, 100, 60, 220, 180, 60, 60, 100};
constexpr int kIconPixels = 16;
constexpr int kScrolledNameRoom = 80; // beyond the title

} // namespace

CDetailsView::CDetailsView(RowActions& actions, QAbstractItemModel* model, QWidget* parent)
    : CRowView(actions, parent) {
    setModel(model);
    setItemDelegate(new FileDelegate(FileDelegate::Look::Striped, this));
    setIconSize({kIconPixels, kIconPixels});
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setSectionsClickable(true);
    header()->setSortIndicatorShown(true);
    header()->setContextMenuPolicy(Qt::PreventContextMenu);
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        header()->resizeSection(column, kWidths.at(static_cast<std::size_t>(column)));
    }
    RememberShares();
    connect(header(), &QHeaderView::sectionResized, this, [this] {
        if (!fitting_) {
            RememberShares();
        }
    });
}

void CDetailsView::resizeEvent(QResizeEvent* event) {
    CRowView::resizeEvent(event);
    FitColumns();
}

void CDetailsView::RememberShares() {
    shares_.clear();
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        shares_.push_back(header()->sectionSize(column) / static_cast<double>(header()->length()));
    }
}

// What a column's share has beyond its title. Where all have enough, each gets just its share.
std::vector<double> CDetailsView::RoomBeyondTitles() const {
    std::vector<double> room;
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        const double share = shares_[static_cast<std::size_t>(column)] * viewport()->width();
        room.push_back(std::max(0.0, share - header()->sectionSizeHint(column)));
    }
    return room;
}

// Each column ends where the sum says, so that the rounding never adds up. Where the view must be scrolled
// anyway, the names get enough to be read.
void CDetailsView::FitColumns() {
    fitting_ = true;
    const std::vector<double> room = RoomBeyondTitles();
    int titles = 0;
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        titles += header()->sectionSizeHint(column);
    }
    const double wanted = std::max(1.0, std::accumulate(room.begin(), room.end(), 0.0));
    const double part = std::max(0, viewport()->width() - titles) / wanted;
    double end = viewport()->width() < titles ? kScrolledNameRoom : 0;
    int left = 0;
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        end += header()->sectionSizeHint(column) + room[static_cast<std::size_t>(column)] * part;
        const int right = static_cast<int>(std::lround(end));
        header()->resizeSection(column, right - left);
        left = right;
    }
    fitting_ = false;
}

} // namespace thntfs
