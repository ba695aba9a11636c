#include "support/desktop/WindowFaults.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAccessible>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTabBar>
#include <QToolBar>
#include <map>
#include <vector>

namespace thntfs::test {

namespace {

constexpr QSize kTitle{0, 30}; // of a window, above it

class FaultList {
public:
    explicit FaultList(const QWidget& window)
        : window_(window) {}

    std::string Text;

    void LookAtTabs();
    void LookAtKeys();
    void LookAtParts();
    void LookAtSize();

private:
    void Add(const QWidget& part, const QString& fault) {
        const QVariant text = part.property("text");
        Text += (QLatin1String(part.metaObject()->className()) + QLatin1Char(' ') + text.toString() +
                 QLatin1String(": ") + fault + QLatin1Char('\n'))
                    .toStdString();
    }
    [[nodiscard]] QRect Place(const QWidget& part) const {
        return {part.mapTo(&window_, QPoint()), part.size()};
    }
    [[nodiscard]] std::vector<QWidget*> TabStops() const;
    void LookAtLines(const QList<QAction*>& lines);
    void LookAtTexts(const QWidget& part);
    void LookAtHeader(const QHeaderView& header);
    void LookAtButton(const QAbstractButton& button);

    const QWidget& window_;
};

std::vector<QWidget*> FaultList::TabStops() const {
    std::vector<QWidget*> stops;
    for (QWidget* part = window_.nextInFocusChain(); part != &window_; part = part->nextInFocusChain()) {
        if (part->window() == &window_ && part->isVisible() && (part->focusPolicy() & Qt::TabFocus) != 0 &&
            part->focusProxy() == nullptr) {
            stops.push_back(part);
        }
    }
    return stops;
}

// From left to right in a line of parts, the lines from top to bottom, and then a column that is right of
// them all. Tab begins anywhere in the ring.
void FaultList::LookAtTabs() {
    const std::vector<QWidget*> stops = TabStops();
    int jumps = 0;
    int rightmost = 0;
    QString told;
    for (std::size_t i = 0; i < stops.size(); ++i) {
        const QWidget& from = *stops[i];
        const QWidget& to = *stops[(i + 1) % stops.size()];
        if (QAccessible::queryAccessibleInterface(stops[i])->text(QAccessible::Name).isEmpty()) {
            Add(from, QStringLiteral("no name"));
        }
        const QRect a = Place(from);
        const QRect b = Place(to);
        rightmost = std::max(rightmost, a.right());
        const bool above = b.bottom() <= a.top() && b.left() <= rightmost;
        const bool before = b.right() <= a.left() && b.top() < a.bottom();
        if (above || before) {
            ++jumps;
            told += QStringLiteral(" %1 %2 -> %3 %4;")
                        .arg(QLatin1String(from.metaObject()->className()), from.property("text").toString(),
                             QLatin1String(to.metaObject()->className()), to.property("text").toString());
        }
    }
    if (jumps > 1) {
        Add(window_, QStringLiteral("Tab jumps:") + told);
    }
}

void FaultList::LookAtKeys() {
    std::map<QString, QString> keys;
    for (const QWidget* part : window_.findChildren<QWidget*>()) {
        QKeySequence key;
        const auto* label = qobject_cast<const QLabel*>(part);
        if (const auto* button = qobject_cast<const QAbstractButton*>(part)) {
            key = button->shortcut();
        } else if (label != nullptr && label->buddy() != nullptr) {
            key = QKeySequence::mnemonic(label->text());
        } else if (const auto* group = qobject_cast<const QGroupBox*>(part)) {
            key = QKeySequence::mnemonic(group->title());
        }
        if (part->window() != &window_ || !part->isVisible() || !part->isEnabled() || key.isEmpty()) {
            continue;
        }
        const QString text = part->property("text").toString();
        const auto [other, fresh] = keys.try_emplace(key.toString(), text);
        if (!fresh && text != QLatin1String("&Clear List")) { // where the key goes to and fro
            Add(*part, QStringLiteral("shares its key with ") + other->second);
        }
    }
    for (const QMenu* menu : window_.findChildren<QMenu*>()) {
        LookAtLines(menu->actions());
    }
    if (const auto* bar = window_.findChild<QMenuBar*>()) {
        LookAtLines(bar->actions());
    }
    LookAtLines(window_.actions()); // which have keys of their own
}

void FaultList::LookAtLines(const QList<QAction*>& lines) {
    std::map<QString, QString> keys;
    for (const QAction* line : lines) {
        const bool inMenu = lines != window_.actions();
        const QKeySequence key = inMenu ? QKeySequence::mnemonic(line->text()) : line->shortcut();
        if (!key.isEmpty() && !keys.try_emplace(key.toString(), line->text()).second) {
            Add(window_, line->text() + QStringLiteral(" shares its key with ") + keys[key.toString()]);
        }
    }
}

void FaultList::LookAtParts() {
    for (const QWidget* part : window_.findChildren<QWidget*>()) {
        if (part->window() != &window_ || !part->isVisible()) {
            continue;
        }
        LookAtTexts(*part);
        bool scrolls = false;
        for (const QWidget* outer = part->parentWidget(); outer != nullptr; outer = outer->parentWidget()) {
            scrolls = scrolls || qobject_cast<const QAbstractScrollArea*>(outer) != nullptr;
        }
        if (!scrolls && !window_.rect().contains(Place(*part)) && !part->size().isEmpty()) {
            Add(*part, QStringLiteral("stands out of the window"));
        }
    }
}

// A text that is cut on purpose is told whole by the part's tip.
void FaultList::LookAtTexts(const QWidget& part) {
    bool cut = false;
    if (const auto* label = qobject_cast<const QLabel*>(&part)) {
        const bool pane = qobject_cast<const QStatusBar*>(part.parentWidget()) != nullptr;
        const QSize need = label->sizeHint();
        cut = !label->text().isEmpty() && !pane &&
              (label->wordWrap() ? label->heightForWidth(part.width()) > part.height()
                                 : need.width() > part.width() || need.height() > part.height());
        if (label->text().contains(QLatin1String("<a ")) && (part.focusPolicy() & Qt::TabFocus) == 0) {
            Add(part, QStringLiteral("link that Tab doesn't reach"));
        }
    } else if (const auto* button = qobject_cast<const QAbstractButton*>(&part)) {
        const int icon = button->icon().isNull() ? 0 : button->iconSize().width();
        cut = part.fontMetrics().horizontalAdvance(button->text().remove(QLatin1Char('&'))) + icon >
              part.width();
        LookAtButton(*button);
    } else if (const auto* header = qobject_cast<const QHeaderView*>(&part)) {
        LookAtHeader(*header);
    } else if (qobject_cast<const QComboBox*>(&part) != nullptr ||
               qobject_cast<const QDateEdit*>(&part) != nullptr) {
        cut = part.sizeHint().width() > part.width();
    }
    if (cut && part.toolTip().isEmpty()) {
        Add(part, QStringLiteral("cut"));
    }
}

void FaultList::LookAtHeader(const QHeaderView& header) {
    for (int section = 0; section < header.count() && header.orientation() == Qt::Horizontal; ++section) {
        const QString title = header.model()->headerData(section, Qt::Horizontal).toString();
        const QVariant tip = header.model()->headerData(section, Qt::Horizontal, Qt::ToolTipRole);
        if (!header.isSectionHidden(section) && !tip.isValid() &&
            header.fontMetrics().horizontalAdvance(title) > header.sectionSize(section)) {
            Add(header, title + QStringLiteral(" is cut"));
        }
    }
}

// What an edit, a tab bar or the toolbar has of its own is there for the mouse.
void FaultList::LookAtButton(const QAbstractButton& button) {
    const auto* push = qobject_cast<const QPushButton*>(&button);
    const QWidget* parent = button.parentWidget();
    const bool reached = (button.focusPolicy() & Qt::TabFocus) != 0 || !button.shortcut().isEmpty() ||
                         (push != nullptr && push->isDefault());
    const bool spare = qobject_cast<const QLineEdit*>(parent) != nullptr ||
                       qobject_cast<const QTabBar*>(parent) != nullptr ||
                       qobject_cast<const QToolBar*>(parent) != nullptr;
    if (!reached && !spare && (!button.text().isEmpty() || !button.icon().isNull())) {
        Add(button, QStringLiteral("needs a mouse"));
    }
}

void FaultList::LookAtSize() {
    const QSize size = window_.isMaximized() ? QSize() : window_.size();
    const QSize least = window_.minimumSizeHint().expandedTo(window_.minimumSize()).expandedTo(size);
    if (least.boundedTo(window_.screen()->availableSize() - kTitle) != least) {
        Add(window_, QStringLiteral("is %1 x %2").arg(least.width()).arg(least.height()));
    }
}

} // namespace

std::string WindowFaults(const QWidget& window) {
    FaultList faults(window);
    faults.LookAtTabs();
    faults.LookAtKeys();
    faults.LookAtParts();
    faults.LookAtSize();
    return faults.Text;
}

} // namespace thntfs::test
