#include "views/PathLine.h"

#include "shell/TipText.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QStyle>
#include <QToolButton>
#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

constexpr std::size_t kLeftOut = ~std::size_t{0};
constexpr std::size_t kPartsInFront = 2; // medium and volume
constexpr int kMaxPartLetters = 40;
constexpr int kLeastLetters = 12;
constexpr int kMostLinesOfMenu = 30;

QString Separator() { return QStringLiteral("›"); }
QString Dots() { return QStringLiteral("…"); }

// The sign of a mnemonic is a letter here.
QString ButtonText(QString text) { return text.replace(QLatin1Char('&'), QLatin1String("&&")); }

} // namespace

struct CPathLine::Shown {
    std::size_t Front = 0; ///< parts at the beginning
    std::size_t Back = 0;  ///< and at the end
};

CPathLine::CPathLine(QWidget* parent, std::function<void(std::uint32_t entryId)> goTo)
    : QWidget(parent)
    , goTo_(std::move(goTo)) {
    setAccessibleName(tr("Path"));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    Button(0).hide(); // Tab comes to it, and to those made later, before what stands below the line
}

void CPathLine::Show(std::vector<PathPart> parts, const QString& whole) {
    parts_ = std::move(parts);
    whole_ = whole;
    setAccessibleDescription(whole);
    LayOut();
}

void CPathLine::CopyPath() const {
    if (!whole_.isEmpty()) {
        QApplication::clipboard()->setText(whole_);
    }
}

void CPathLine::TakeFocus() {
    if (!partOf_.empty()) {
        buttons_[partOf_.size() - 1]->setFocus(Qt::ShortcutFocusReason);
    }
}

QSize CPathLine::sizeHint() const {
    return {WidthOf(QString(kMaxPartLetters, QLatin1Char('n'))), minimumSizeHint().height()};
}

QSize CPathLine::minimumSizeHint() const {
    return {WidthOf(QString(kLeastLetters, QLatin1Char('n'))), fontMetrics().height() * 3 / 2};
}

void CPathLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    LayOut();
}

void CPathLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        LayOut();
    }
}

int CPathLine::WidthOf(const QString& text) const {
    return fontMetrics().horizontalAdvance(text) + fontMetrics().height();
}

int CPathLine::WidthOfPart(std::size_t part) const {
    const int most = WidthOf(QString(kMaxPartLetters, QLatin1Char('n')));
    return std::min(most, WidthOf(parts_[part].Text)) + Gap();
}

int CPathLine::Gap() const { return fontMetrics().horizontalAdvance(Separator()) * 2; }

// The folder itself comes first, then the medium and the volume, then the folders next above.
CPathLine::Shown CPathLine::WhatFits() const {
    const std::size_t count = parts_.size();
    Shown shown{0, 1};
    int room = width() - WidthOfPart(count - 1);
    const auto fits = [&](std::size_t part) {
        const bool isLast = shown.Front + shown.Back + 1 == count;
        const int rest = room - WidthOfPart(part);
        const bool has = rest >= (isLast ? 0 : WidthOf(Dots()) + Gap());
        room = has ? rest : room;
        return has;
    };
    while (shown.Front + shown.Back < count && shown.Front < kPartsInFront && fits(shown.Front)) {
        ++shown.Front;
    }
    while (shown.Front + shown.Back < count && fits(count - shown.Back - 1)) {
        ++shown.Back;
    }
    return shown;
}

void CPathLine::LayOut() {
    const bool hadFocus = isAncestorOf(QApplication::focusWidget());
    partOf_.clear();
    int left = 0;
    if (!parts_.empty()) {
        const std::size_t count = parts_.size();
        const Shown shown = WhatFits();
        for (std::size_t part = 0; part < shown.Front; ++part) {
            Place(partOf_.size(), part, WidthOfPart(part) - Gap(), left);
        }
        if (shown.Front + shown.Back < count) {
            Place(partOf_.size(), kLeftOut, WidthOf(Dots()), left);
        }
        for (std::size_t part = count - shown.Back; part < count; ++part) {
            Place(partOf_.size(), part, std::min(WidthOfPart(part) - Gap(), width() - left), left);
        }
    }
    for (std::size_t i = partOf_.size(); i < buttons_.size(); ++i) {
        buttons_[i]->hide();
    }
    if (hadFocus) {
        TakeFocus();
    }
    update();
}

void CPathLine::Place(std::size_t button, std::size_t part, int width, int& left) {
    QToolButton& placed = Button(button);
    partOf_.push_back(part);
    if (part == kLeftOut) {
        placed.setText(Dots());
        placed.setToolTip(tr("Folders in between"));
        placed.setAccessibleName(tr("Folders in between"));
    } else {
        const PathPart& shown = parts_[part];
        constexpr int kRounding = 2; // an elided text is measured in parts of a pixel
        const int room = width - fontMetrics().height() + kRounding;
        placed.setText(ButtonText(fontMetrics().elidedText(shown.Text, Qt::ElideMiddle, room)));
        placed.setToolTip(TipText(shown.Tip.isEmpty() ? shown.Text : shown.Tip));
        placed.setAccessibleName(shown.Text);
    }
    placed.setGeometry(QStyle::visualRect(layoutDirection(), rect(), {left, 0, width, height()}));
    placed.show();
    left += width + Gap();
}

QToolButton& CPathLine::Button(std::size_t number) {
    while (buttons_.size() <= number) {
        auto* button = new QToolButton(this);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        connect(button, &QToolButton::clicked, this, [this, made = buttons_.size()] { Clicked(made); });
        if (!buttons_.empty()) { // else it would be the window's last
            setTabOrder(buttons_.back(), button);
        }
        buttons_.push_back(button);
    }
    return *buttons_[number];
}

void CPathLine::Clicked(std::size_t button) {
    if (partOf_[button] == kLeftOut) {
        OfferLeftOut(*buttons_[button]);
    } else {
        goTo_(parts_[partOf_[button]].EntryId);
    }
}

// The outermost of those that are left out stands at the top; of very many the lines next to the folder.
void CPathLine::OfferLeftOut(const QWidget& below) {
    const Shown shown = WhatFits();
    const std::size_t end = parts_.size() - shown.Back;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (std::size_t part = std::max(shown.Front, end - std::min<std::size_t>(end, kMostLinesOfMenu));
         part < end; ++part) {
        const int room = WidthOf(QString(kMaxPartLetters, QLatin1Char('n')));
        const QString text = fontMetrics().elidedText(parts_[part].Text, Qt::ElideMiddle, room);
        connect(menu->addAction(ButtonText(text)), &QAction::triggered, this,
                [this, entryId = parts_[part].EntryId] { goTo_(entryId); });
    }
    menu->popup(below.mapToGlobal(QPoint(0, below.height())));
}

// What stands between two parts.
void CPathLine::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    for (std::size_t i = 1; i < partOf_.size(); ++i) {
        const QRect one = buttons_[i - 1]->geometry();
        const QRect other = buttons_[i]->geometry();
        const int left = std::min(one.right(), other.right());
        const int right = std::max(one.left(), other.left());
        painter.drawText(QRect(left, 0, right - left, height()), Qt::AlignCenter, Separator());
    }
}

void CPathLine::keyPressEvent(QKeyEvent* event) {
    const auto* button = qobject_cast<QToolButton*>(QApplication::focusWidget());
    if (event->matches(QKeySequence::Copy)) {
        CopyPath();
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && button != nullptr) {
        const_cast<QToolButton*>(button)->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void CPathLine::contextMenuEvent(QContextMenuEvent* event) {
    if (whole_.isEmpty()) {
        return;
    }
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(tr("&Copy Path") + QStringLiteral("\tCtrl+C")), &QAction::triggered, this,
            [this] { CopyPath(); });
    menu->popup(event->globalPos());
}

} // namespace thntfs
