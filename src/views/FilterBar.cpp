#include "views/FilterBar.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>
#include <utility>

namespace thntfs {

namespace {

constexpr int kLongestPart = 255; // of a name
constexpr int kEdge = 4;

} // namespace

CFilterBar::CFilterBar(QWidget* parent, std::function<void(const RowFilter&)> narrow)
    : QWidget(parent)
    , narrow_(std::move(narrow))
    , reach_(new QComboBox(this))
    , namePart_(new QLineEdit(this))
    , count_(new QLabel(this)) {
    setAccessibleName(tr("Filter"));
    reach_->addItems({tr("All"), tr("Deleted only")});
    reach_->setAccessibleName(tr("What the list shows"));
    reach_->setToolTip(tr("Shows all of the folder in the list, or what was deleted"));
    namePart_->setPlaceholderText(tr("Name contains"));
    namePart_->setAccessibleName(tr("Name contains"));
    namePart_->setToolTip(tr("Shows names with this text in the list; * and ? stand for other letters"));
    namePart_->setMaxLength(kLongestPart);
    namePart_->setClearButtonEnabled(true);
    namePart_->installEventFilter(this);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(reach_);
    layout->addWidget(namePart_, 1);
    count_->setContentsMargins(0, 0, kEdge, 0);
    layout->addWidget(count_);
    connect(reach_, &QComboBox::currentIndexChanged, this, [this] { Changed(); });
    connect(namePart_, &QLineEdit::textChanged, this, [this] { Changed(); });
}

RowFilter CFilterBar::Chosen() const {
    return {reach_->currentIndex() == 1, namePart_->text().toStdString()};
}

void CFilterBar::Changed() const { narrow_(Chosen()); }

void CFilterBar::Show(const RowFilter& filter, int shown, int all) {
    if (filter != Chosen()) {
        const QSignalBlocker reachQuiet(reach_);
        const QSignalBlocker partQuiet(namePart_);
        reach_->setCurrentIndex(filter.DeletedOnly ? 1 : 0);
        namePart_->setText(QString::fromStdString(filter.NamePart));
    }
    const QLocale locale;
    count_->setText(filter.Narrows() && all > 0
                        ? tr("%1 of %2 shown").arg(locale.toString(shown), locale.toString(all))
                        : QString());
    count_->setVisible(!count_->text().isEmpty());
}

void CFilterBar::TakeFocus() {
    namePart_->setFocus(Qt::ShortcutFocusReason);
    namePart_->selectAll();
}

QWidget* CFilterBar::LastTabStop() const { return namePart_; }

// Escape ends a search elsewhere, and here the narrowing first.
bool CFilterBar::eventFilter(QObject* watched, QEvent* event) {
    const bool taken = event->type() == QEvent::ShortcutOverride;
    if (!taken && event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape && !namePart_->text().isEmpty()) {
        if (taken) {
            event->accept();
        } else {
            namePart_->clear();
        }
        return true;
    }
    const bool toList = key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter;
    if (!taken && toList && list_ != nullptr) {
        list_->setFocus(Qt::OtherFocusReason);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace thntfs
