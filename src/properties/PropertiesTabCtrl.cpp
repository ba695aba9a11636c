#include "properties/PropertiesTabCtrl.h"

#include "content/EntryFacts.h"
#include "engine/EngineState.h"
#include "properties/PropertyTexts.h"
#include "shell/Icons.h"
#include "shell/ShownName.h"
#include "shell/WindowMessages.h"

#include <QApplication>
#include <QCheckBox>
#include <QCoreApplication>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <system_error>

namespace thntfs {

namespace {

constexpr int kPicturePixels = 32;
constexpr int kMostLinesInView = 4;
constexpr int kFieldChars = 44; // that a field is wide by itself
constexpr auto kProgressEvery = std::chrono::milliseconds(100);
constexpr std::uint64_t kRewriteAt = 512; // multiples

struct AttributeBox {
    const char* Text;
    std::uint16_t Flag;
    bool WhenClear;
};

constexpr std::array<AttributeBox, 6> kAttributeBoxes{{
    {QT_TRANSLATE_NOOP("PropertiesTabCtrl", "&Read Only"), 0x1, false},
    {QT_TRANSLATE_NOOP("PropertiesTabCtrl", "&Hidden"), 0x2, false},
    {QT_TRANSLATE_NOOP("PropertiesTabCtrl", "&System"), 0x4, false},
    {QT_TRANSLATE_NOOP("PropertiesTabCtrl", "&Deleted"), kFlagLive, true},
    {QT_TRANSLATE_NOOP("PropertiesTabCtrl", "&Archive"), 0x20, false},
    {QT_TRANSLATE_NOOP("PropertiesTabCtrl", "&Compressed"), 0x800, false},
}};

const char* PictureOf(const CatalogueItem& entry) {
    if (entry.IsFolder()) {
        return entry.IsLive() ? "folder-live" : "folder-deleted";
    }
    return entry.IsLive() ? "file-live" : "file-deleted";
}

// Its text can be selected and copied; a long one shows from its beginning.
QLineEdit* ReadOnlyLine(const QString& text) {
    auto* line = new QLineEdit(text);
    line->setReadOnly(true);
    line->setFrame(false);
    line->setCursorPosition(0);
    line->setMinimumWidth(line->fontMetrics().averageCharWidth() * kFieldChars);
    return line;
}

// What is greyed is still to be read, which some palettes don't see to.
QPalette ReadableWhenDisabled(QPalette palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::Text);
    const QColor ground = palette.color(QPalette::Active, QPalette::Base);
    const QColor between((2 * text.red() + ground.red()) / 3, (2 * text.green() + ground.green()) / 3,
                         (2 * text.blue() + ground.blue()) / 3);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, between);
    }
    return palette;
}

QWidget* ReadOnlyLines(const QString& text) {
    auto* lines = new QPlainTextEdit(text);
    lines->setReadOnly(true);
    lines->setTabChangesFocus(true);
    lines->setLineWrapMode(QPlainTextEdit::NoWrap);
    const int shown = std::clamp(static_cast<int>(text.count(QLatin1Char('\n'))) + 1, 2, kMostLinesInView);
    lines->setFixedHeight((shown + 1) * lines->fontMetrics().lineSpacing() +
                          lines->horizontalScrollBar()->sizeHint().height());
    return lines;
}

} // namespace

CPropertiesTabCtrl::CPropertiesTabCtrl(const CatalogueItem& entry, MessageTarget& sheet, QWidget* parent)
    : QTabWidget(parent)
    , sheet_(sheet)
    , entry_(entry) {
    auto* page = new QWidget;
    page->setBackgroundRole(QPalette::Base);
    fields_ = new QGridLayout;
    auto* layout = new QVBoxLayout(page);
    layout->addLayout(fields_);
    layout->addStretch(1);
    auto* scroll = new QScrollArea;
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    addTab(scroll, tr("Information"));
    CreateHead();
    CreateAttributes();
    try {
        countThread_ = std::make_unique<JobThread>([this] { DoWork(); });
    } catch (const std::system_error&) {
        work_ = Work::None;
    }
}

// Where the sheet goes without having been closed, the worker still wants its messages handled.
CPropertiesTabCtrl::~CPropertiesTabCtrl() {
    leaving_ = true;
    Stop();
    while (work_ != Work::None) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    countThread_.reset();
}

void CPropertiesTabCtrl::CreateHead() {
    auto* picture = new QLabel;
    picture->setPixmap(LoadIcon(PictureOf(entry_)).pixmap(kPicturePixels));
    auto* name = ReadOnlyLine(ShownName(entry_.Name));
    name->setAccessibleName(tr("Name"));
    fields_->addWidget(picture, 0, 0);
    fields_->addWidget(name, 0, 1);
    AddRule();
    AddLine(tr("Type"), entry_.IsFolder() ? tr("Folder") : tr("File"));
    size_ = AddLine(tr("Size"), {});
    contains_ = entry_.IsFolder() ? AddLine(tr("Contains"), {}) : nullptr;
    ShowCounts();
    AddRule();
    AddLine(tr("Created"), PropertyDate(entry_.CreatedDate));
    AddLine(tr("Modified"), PropertyDate(entry_.AccessedDate));
    AddRule();
}

void CPropertiesTabCtrl::CreateAttributes() {
    constexpr int kBoxesARow = 3;
    auto* boxes = new QWidget;
    auto* grid = new QGridLayout(boxes);
    grid->setContentsMargins({});
    for (int place = 0; const AttributeBox& attribute : kAttributeBoxes) {
        auto* box = new QCheckBox(QCoreApplication::translate("PropertiesTabCtrl", attribute.Text));
        box->setChecked(((entry_.Flags & attribute.Flag) != 0) != attribute.WhenClear);
        box->setEnabled(false);
        box->setPalette(ReadableWhenDisabled(box->palette()));
        grid->addWidget(box, place / kBoxesARow, place % kBoxesARow);
        last_ = box;
        ++place;
    }
    AddRow(tr("Attributes"), boxes);
}

void CPropertiesTabCtrl::AddRule() {
    auto* rule = new QFrame;
    rule->setFrameStyle(int{QFrame::HLine} | int{QFrame::Sunken});
    fields_->addWidget(rule, fields_->rowCount(), 0, 1, 2);
}

void CPropertiesTabCtrl::AddRow(const QString& caption, QWidget* value) {
    const int row = fields_->rowCount();
    auto* label = new QLabel(caption);
    label->setBuddy(value);
    value->setAccessibleName(caption);
    const bool oneLine = dynamic_cast<QLineEdit*>(value) != nullptr;
    fields_->addWidget(label, row, 0, oneLine ? Qt::AlignVCenter : Qt::AlignTop);
    fields_->addWidget(value, row, 1);
    if (value->focusPolicy() == Qt::NoFocus) {
        return;
    }
    if (last_ != nullptr) {
        setTabOrder(last_, value); // a row that comes late isn't behind the sheet's button
    }
    last_ = value;
}

QLineEdit* CPropertiesTabCtrl::AddLine(const QString& caption, const QString& text) {
    QLineEdit* line = ReadOnlyLine(text);
    AddRow(caption, line);
    return line;
}

std::intptr_t CPropertiesTabCtrl::OnMessage(std::uint32_t message, std::uintptr_t wParam,
                                            std::uintptr_t /*lParam*/) {
    switch (message) {
    case WM_PROPS_PROGRESS:
        ShowProgress(WM_PROPS_PROGRESS.First(wParam));
        break;
    case WM_PROPS_FACTS:
        ShowFacts(WM_PROPS_FACTS.First(wParam));
        break;
    case WM_PROPS_DONE:
        if (!leaving_) {
            countThread_.reset();
            WM_PROPS_CLOSE.Send(&sheet_);
        }
        break;
    default:
        break;
    }
    return 0;
}

void CPropertiesTabCtrl::ShowProgress(const BelowCounts& below) {
    below_ = below;
    entry_.Size = below.Bytes;
    ShowCounts();
}

// While the count goes on, some totals are written without a blank.
void CPropertiesTabCtrl::ShowCounts() {
    size_->setText(PropertySize(entry_.Size, counting_ && entry_.Size % kRewriteAt == 0));
    size_->setCursorPosition(0);
    if (contains_ != nullptr) {
        contains_->setText(PropertyContains(below_));
    }
}

void CPropertiesTabCtrl::ShowFacts(const EntryFacts& facts) {
    const std::vector<PropertyRow> rows = FurtherProperties(entry_, facts);
    if (!rows.empty()) {
        AddRule();
    }
    for (const PropertyRow& row : rows) {
        if (row.Text.contains(QLatin1Char('\n'))) {
            AddRow(row.Caption, ReadOnlyLines(row.Text));
        } else {
            AddLine(row.Caption, row.Text);
        }
    }
}

bool CPropertiesTabCtrl::Stop() {
    Work running = Work::Running;
    work_.compare_exchange_strong(running, Work::Stopping);
    return running != Work::None;
}

// From the exchange on the sheet may go at any time, so what comes behind it is posted.
void CPropertiesTabCtrl::DoWork() {
    try {
        const CatalogueItem entry = entry_; // whose size changes by the count
        if (entry.IsFolder()) {
            CountFolder(entry.BlockOffset);
        }
        const EntryFacts facts = GatherEntryFacts(entry, [this] { return work_ == Work::Running; });
        if (work_ == Work::Running) {
            WM_PROPS_FACTS.Send(this, facts);
        }
    } catch (const CUserException&) {
        // The box has told why; what was found till then stays.
    }
    if (work_.exchange(Work::None) == Work::Stopping) {
        WM_PROPS_DONE.Post(this);
    }
}

void CPropertiesTabCtrl::CountFolder(std::uint32_t blockOffset) {
    using Clock = std::chrono::steady_clock;
    counting_ = true;
    auto shown = Clock::now();
    const BelowCounts below = CountBelow(blockOffset, [&](const BelowCounts& soFar) {
        if (Clock::now() - shown >= kProgressEvery) {
            WM_PROPS_PROGRESS.Send(this, soFar);
            shown = Clock::now();
        }
        return work_ == Work::Running;
    });
    counting_ = false;
    WM_PROPS_PROGRESS.Send(this, below);
}

} // namespace thntfs
