#include "views/DetailsView.h"

#include "views/FileDelegate.h"
#include "views/FileListModel.h"

#include <QHeaderView>
#include <QStyle>
#include <QStyleOptionHeader>
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace thntfs {

namespace {

constexpr std::array<int, FileListModel::kColumns> kWidths{200, 100, 60, 220, 180, 60, 60, 100, 400};
constexpr int kIconPixels = 16;
constexpr int kNameRoom = 64; // beyond the title
constexpr int kNarrowest = 40;
constexpr int kMeasuredRows = 100; // for how wide a column is to be, at each change of the rows

// The toolkit cuts a title as it comes, one that stands at the right at its beginning.
class CTitles : public QHeaderView {
public:
    explicit CTitles(QWidget* parent)
        : QHeaderView(Qt::Horizontal, parent) {
        setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }

protected:
    void initStyleOptionForIndex(QStyleOptionHeader* option, int section) const override {
        QHeaderView::initStyleOptionForIndex(option, section);
        const bool sorted = isSortIndicatorShown() && section == sortIndicatorSection();
        const int mark = sorted ? style()->pixelMetric(QStyle::PM_HeaderMarkSize, option, this) : 0;
        const int edges = 2 * style()->pixelMetric(QStyle::PM_HeaderMargin, option, this);
        option->text =
            fontMetrics().elidedText(option->text, Qt::ElideRight, sectionSize(section) - edges - mark);
    }
};

} // namespace

CDetailsView::CDetailsView(RowActions& actions, QAbstractItemModel* model, QWidget* parent)
    : CRowView(actions, parent) {
    setHeader(new CTitles(this));
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
    header()->setResizeContentsPrecision(kMeasuredRows);
    header()->setContextMenuPolicy(Qt::PreventContextMenu);
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        header()->resizeSection(column, kWidths.at(static_cast<std::size_t>(column)));
    }
    RememberShares();
    header()->moveSection(FileListModel::kFolder, 1);
    setColumnHidden(FileListModel::kFolder, true);
    connect(header(), &QHeaderView::sectionResized, this, [this] {
        if (!fitting_) {
            RememberShares();
            dividedByUser_ = true;
        }
    });
    const auto fit = [this] {
        if (!dividedByUser_) {
            FitColumns();
        }
    };
    connect(model, &QAbstractItemModel::modelReset, this, fit);
    connect(model, &QAbstractItemModel::headerDataChanged, this, fit);
}

void CDetailsView::ShowFolders(bool show) {
    if (isColumnHidden(FileListModel::kFolder) == show) {
        fitting_ = true;
        setColumnHidden(FileListModel::kFolder, !show);
        FitColumns();
    }
}

void CDetailsView::resizeEvent(QResizeEvent* event) {
    CRowView::resizeEvent(event);
    FitColumns();
}

void CDetailsView::RememberShares() {
    shares_.resize(FileListModel::kColumns);
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        if (!isColumnHidden(column)) {
            shares_[static_cast<std::size_t>(column)] =
                header()->sectionSize(column) / static_cast<double>(header()->length());
        }
    }
}

// As wide as its title, where there is room for all. In a narrow view as wide as what stands in it, for a cut
// title can still be guessed and a cut number can't, and the names get enough to be read.
std::vector<int> CDetailsView::LeastWidths() const {
    std::vector<int> widths(FileListModel::kColumns);
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        widths[static_cast<std::size_t>(column)] =
            isColumnHidden(column) ? 0 : header()->sectionSizeHint(column);
    }
    widths[FileListModel::kName] += kNameRoom;
    widths[FileListModel::kSize] = std::max(widths[FileListModel::kSize],
                                            sizeHintForColumn(FileListModel::kSize)); // a title may be short
    if (std::accumulate(widths.begin(), widths.end(), 0) > viewport()->width()) {
        for (int column = FileListModel::kName + 1; column < FileListModel::kColumns; ++column) {
            int& width = widths[static_cast<std::size_t>(column)];
            width = std::min(width, std::max(kNarrowest, sizeHintForColumn(column)));
        }
    }
    return widths;
}

// What each column would like beyond its least width: its share, and its title whole.
std::vector<double> CDetailsView::WishedRoom(const std::vector<int>& leastWidths) const {
    std::vector<double> room;
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        const auto place = static_cast<std::size_t>(column);
        const double wish =
            std::max<double>(shares_[place] * viewport()->width(), header()->sectionSizeHint(column));
        room.push_back(isColumnHidden(column) ? 0 : std::max(0.0, wish - leastWidths[place]));
    }
    return room;
}

// Each column ends where the sum says, so that the rounding never adds up.
void CDetailsView::FitColumns() {
    fitting_ = true;
    const std::vector<int> least = LeastWidths();
    const std::vector<double> room = WishedRoom(least);
    const double wished = std::max(1.0, std::accumulate(room.begin(), room.end(), 0.0));
    const int left = viewport()->width() - std::accumulate(least.begin(), least.end(), 0);
    const double part = std::max(0, left) / wished;
    double end = 0;
    int start = 0;
    for (int column = 0; column < FileListModel::kColumns; ++column) {
        end += least[static_cast<std::size_t>(column)] + room[static_cast<std::size_t>(column)] * part;
        const int right = static_cast<int>(std::lround(end));
        header()->resizeSection(column, right - start);
        start = right;
    }
    fitting_ = false;
}

} // namespace thntfs
