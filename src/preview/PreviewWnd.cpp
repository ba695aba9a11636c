#include "preview/PreviewWnd.h"

#include "catalogue/CatalogueReader.h"
#include "content/PreviewContent.h"
#include "engine/EngineState.h"
#include "preview/HexView.h"
#include "shell/Icons.h"
#include "shell/ShownName.h"
#include "shell/WaitCursor.h"
#include "shell/WindowTitle.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QStandardItemModel>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace thntfs {

namespace {

constexpr int kHeaderHeight = 25;
constexpr QSize kHexWindowSize{760, 520};

// Widths of the columns in inches of the screen.
constexpr double kOffsetInches = 0.9;
constexpr double kBinaryInches = 4.5;
constexpr double kAnsiInches = 1.5;

// A medium that fails for good has told so in its box.
void LoadBytes(const CatalogueItem& entry) {
    const WaitCursor hourglass;
    Engine.PreviewLength = 0;
    try {
        LoadPreviewBuffer(entry);
    } catch (const CUserException&) {
        Engine.PreviewLength = 0;
    }
}

CHexView* LoadedView(const CatalogueItem& entry, QWidget* parent) {
    LoadBytes(entry);
    return new CHexView(parent);
}

} // namespace

CPreviewWnd::CPreviewWnd(const CatalogueItem& entry, std::function<void()> closed)
    : QWidget(nullptr, Qt::Window)
    , closed_(std::move(closed))
    , view_(LoadedView(entry, this)) {
    setObjectName(QStringLiteral("HexWindow"));
    setWindowTitle(LiteralTitle(tr("%1 hex view").arg(ShownName(entry.Name))));
    setWindowIcon(LoadIcon("app"));
    resize(kHexWindowSize);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(CreateHeader());
    layout->addWidget(view_, 1);
    layout->addWidget(CreateFindBar());
    CreateActions();
    view_->setFocus();
}

// By the time that a closed window goes, another one may have the buffer.
CPreviewWnd::~CPreviewWnd() {
    if (closed_) {
        FreeBuffer();
    }
}

QHeaderView* CPreviewWnd::CreateHeader() {
    auto* header = new QHeaderView(Qt::Horizontal, this);
    auto* titles = new QStandardItemModel(header);
    titles->setHorizontalHeaderLabels({tr("Offset"), tr("Binary"), tr("ANSI")});
    header->setModel(titles);
    header->setAccessibleName(tr("Columns"));
    header->setFont(QFontDatabase::systemFont(QFontDatabase::GeneralFont));
    header->setSectionResizeMode(QHeaderView::Fixed);
    header->setMinimumSectionSize(1);
    header->setSectionsClickable(false);
    header->setFocusPolicy(Qt::NoFocus);
    header->setContextMenuPolicy(Qt::PreventContextMenu);
    header->setFixedHeight(std::max(kHeaderHeight, header->sizeHint().height()));
    const double inch = screen()->logicalDotsPerInchX();
    const std::initializer_list<double> widths{kOffsetInches, kBinaryInches, kAnsiInches};
    for (int column = 0; const double inches : widths) {
        header->resizeSection(column++, static_cast<int>(inches * inch));
    }
    view_->SetColumns(header->sectionSize(0), header->sectionSize(1));
    connect(view_->horizontalScrollBar(), &QScrollBar::valueChanged, header, &QHeaderView::setOffset);
    return header;
}

QWidget* CPreviewWnd::CreateFindBar() {
    findBar_ = new QWidget(this);
    wanted_ = new QLineEdit;
    wanted_->setAccessibleName(tr("Search for"));
    wanted_->setPlaceholderText(tr("Search for"));
    asBytes_ = new QCheckBox(tr("&Hex bytes"));
    auto* next = new QPushButton(tr("Find &Next"));
    result_ = new QLabel;
    auto* layout = new QHBoxLayout(findBar_);
    layout->addWidget(wanted_, 1);
    layout->addWidget(asBytes_);
    layout->addWidget(next);
    layout->addWidget(result_);
    connect(wanted_, &QLineEdit::returnPressed, this, [this] { FindNext(); });
    connect(wanted_, &QLineEdit::textChanged, result_, &QLabel::clear);
    connect(asBytes_, &QCheckBox::toggled, result_, &QLabel::clear);
    connect(next, &QPushButton::clicked, this, [this] { FindNext(); });
    findBar_->hide();
    return findBar_;
}

// They stand in the view's menu, where nothing else tells of them.
void CPreviewWnd::CreateActions() {
    const auto add = [this](const QString& text, const QKeySequence& key, auto act) {
        auto* action = new QAction(text, view_);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        action->setEnabled(!CHexView::Shown().empty());
        connect(action, &QAction::triggered, this, act);
        view_->addAction(action);
        return action;
    };
    add(tr("&Copy"), QKeySequence::Copy, [this] { view_->CopyHex(); });
    add(tr("Copy as &Text"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), [this] { view_->CopyText(); });
    add(tr("Select &All"), QKeySequence::SelectAll, [this] { view_->SelectAll(); });
    add(tr("&Find..."), QKeySequence::Find, [this] {
        OpenFindBar();
    })->setShortcutContext(Qt::WindowShortcut);
    add(tr("Find &Next"), Qt::Key_F3, [this] { FindNext(); })->setShortcutContext(Qt::WindowShortcut);
    view_->setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, [this] { EscapePressed(); });
}

void CPreviewWnd::OpenFindBar() {
    findBar_->show();
    wanted_->selectAll();
    wanted_->setFocus();
}

void CPreviewWnd::EscapePressed() {
    if (findBar_->isVisible()) {
        findBar_->hide();
        view_->setFocus();
    } else {
        close();
    }
}

// From behind the place of the last hit on, and then from the beginning.
void CPreviewWnd::FindNext() {
    const QString text = wanted_->text();
    const auto pattern = asBytes_->isChecked() ? BytesPattern(text) : TextPattern(text);
    if (!pattern) {
        OpenFindBar();
        result_->setText(text.isEmpty() ? QString() : tr("These are no hex bytes."));
        return;
    }
    const WaitCursor hourglass;
    const ConstBytes shown = CHexView::Shown();
    const HexMatch selected = view_->Selected();
    auto match = FindPattern(shown, *pattern, selected.Offset + (selected == lastHit_ ? 1 : 0));
    if (!match) {
        match = FindPattern(shown, *pattern, 0);
    }
    result_->setText(match ? QString() : tr("Not found."));
    if (match) {
        lastHit_ = *match;
        view_->Select(*match);
    }
}

void CPreviewWnd::FreeBuffer() {
    Engine.PreviewLength = 0;
    Engine.PreviewBuffer = {};
}

void CPreviewWnd::closeEvent(QCloseEvent* event) {
    event->accept();
    if (const auto closed = std::exchange(closed_, nullptr)) {
        view_->Clear();
        FreeBuffer();
        closed();
    }
}

} // namespace thntfs
