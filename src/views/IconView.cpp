#include "views/IconView.h"

#include "views/FileDelegate.h"

namespace thntfs {

namespace {

constexpr int kLargeIcon = 32;
constexpr int kSmallIcon = 16;
constexpr int kLargeWidth = 110;
constexpr int kSmallWidth = 200;
constexpr int kNameLines = 3;
constexpr int kMargin = 6;

} // namespace

CIconView::CIconView(RowActions& actions, QAbstractItemModel* model, QWidget* parent)
    : CRowView(actions, parent)
    , delegate_(new FileDelegate(FileDelegate::Look::Plain, this)) {
    setModel(model);
    setItemDelegate(delegate_);
    setResizeMode(Adjust);
    setUniformItemSizes(true);
}

// Cells of one size for all spare the view a look at each name. What it takes for that size is the hint of
// the first.
void CIconView::SetLook(Look look) {
    const bool large = look == Look::Large;
    setViewMode(large ? IconMode : ListMode);
    setMovement(Static);
    setFlow(look == Look::List ? TopToBottom : LeftToRight);
    setWrapping(true);
    setWordWrap(large);
    const int icon = large ? kLargeIcon : kSmallIcon;
    const int line = fontMetrics().lineSpacing();
    setIconSize({icon, icon});
    const QSize cell = large ? QSize(kLargeWidth, icon + kNameLines * line + 2 * kMargin)
                             : QSize(kSmallWidth, std::max(icon, line) + kMargin);
    delegate_->SetCell(cell);
    setGridSize(cell);
}

} // namespace thntfs
