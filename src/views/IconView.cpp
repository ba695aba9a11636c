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

CIconView::CIconView(RowActions& actions, QWidget* parent)
    : CRowView(actions, parent)
    , delegate_(new FileDelegate(FileDelegate::Look::Plain, this)) {
    setItemDelegate(delegate_);
    setResizeMode(Adjust);
    setUniformItemSizes(true);
}

// The toolkit makes a selection for each model that it is given, and leaves it behind.
void CIconView::Follow(const QAbstractItemView* other) {
    QAbstractItemModel* rows = other == nullptr ? nullptr : other->model();
    if (rows != nullptr && rows == model()) {
        return;
    }
    const auto change = [this](const auto& apply) {
        QItemSelectionModel* before = selectionModel();
        apply();
        if (before != nullptr && before->parent() == this) {
            delete before;
        }
    };
    change([&] { setModel(rows); });
    if (other != nullptr) {
        change([&] { setSelectionModel(other->selectionModel()); });
    }
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
