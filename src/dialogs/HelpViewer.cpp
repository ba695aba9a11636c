#include "dialogs/HelpViewer.h"

#include "shell/Icons.h"
#include "shell/MessageTarget.h"

#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolButton>
#include <QVBoxLayout>
#include <array>

// The library's resources are not linked in of their own accord. The call must stand outside a namespace.
static void UseHelpPages() { Q_INIT_RESOURCE(help); }

namespace thntfs {

namespace {

struct HelpTopic {
    const char* File;
    const char* Title;
};

// In the order of the list; the first is the contents page.
constexpr auto kTopics = std::to_array<HelpTopic>({
    {"contents.htm", QT_TRANSLATE_NOOP("HelpViewer", "First of all")},
    {"ntfswizardwin.htm", QT_TRANSLATE_NOOP("HelpViewer", "The wizard")},
    {"ntfsrecoverdata.htm", QT_TRANSLATE_NOOP("HelpViewer", "Recovering from a disk")},
    {"ntfsrecoverfromimage.htm", QT_TRANSLATE_NOOP("HelpViewer", "Recovering from an image")},
    {"ntfsselectanimagefileforproce.htm", QT_TRANSLATE_NOOP("HelpViewer", "Selecting an image file")},
    {"searching.htm", QT_TRANSLATE_NOOP("HelpViewer", "Searching for lost partitions")},
    {"ntfsdiskimaging.htm", QT_TRANSLATE_NOOP("HelpViewer", "Making an image of a disk")},
    {"ntfsdiskimaging2.htm", QT_TRANSLATE_NOOP("HelpViewer", "The image page")},
    {"ntfsclonedisk.htm", QT_TRANSLATE_NOOP("HelpViewer", "Cloning a disk")},
    {"ntfsclonewindow.htm", QT_TRANSLATE_NOOP("HelpViewer", "The clone page")},
    {"scans.htm", QT_TRANSLATE_NOOP("HelpViewer", "Basic Scan and Turbo Scan")},
    {"browsing.htm", QT_TRANSLATE_NOOP("HelpViewer", "Looking through the result")},
    {"finding.htm", QT_TRANSLATE_NOOP("HelpViewer", "Finding names")},
    {"saving.htm", QT_TRANSLATE_NOOP("HelpViewer", "Getting files back")},
    {"whattosave.htm", QT_TRANSLATE_NOOP("HelpViewer", "What to save")},
    {"openasfolder.htm", QT_TRANSLATE_NOOP("HelpViewer", "Opening the result as a folder")},
    {"scaninfo.htm", QT_TRANSLATE_NOOP("HelpViewer", "Keeping a scan's result")},
    {"processlog.htm", QT_TRANSLATE_NOOP("HelpViewer", "The process log")},
    {"features.htm", QT_TRANSLATE_NOOP("HelpViewer", "What the program does")},
    {"faq.htm", QT_TRANSLATE_NOOP("HelpViewer", "Questions and answers")},
    {"contact.htm", QT_TRANSLATE_NOOP("HelpViewer", "Asking for help")},
    {"keys.htm", QT_TRANSLATE_NOOP("HelpViewer", "Keys")},
});

constexpr QSize kWindowSize{900, 640};
constexpr double kLargestShare = 0.9; // of the screen
constexpr int kListWidth = 230;
constexpr int kListSpacing = 2;
constexpr int kSearchWidth = 200;
constexpr int kPageMargin = 14;

// Sizes and distances only: colours are those of the user's palette.
constexpr const char* kPageStyle = "h1 { font-size: x-large; margin-top: 0px; margin-bottom: 10px; }"
                                   "h2 { font-size: large; margin-top: 16px; margin-bottom: 6px; }"
                                   "p { margin-top: 6px; margin-bottom: 6px; }"
                                   "li { margin-top: 3px; margin-bottom: 3px; }"
                                   "pre { margin-left: 24px; margin-top: 8px; margin-bottom: 8px; }";

int RowOf(const QString& file) {
    for (std::size_t i = 0; i < kTopics.size(); ++i) {
        if (file == QLatin1String(kTopics[i].File)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

QWidget* HelpOwner() {
    if (QWidget* modal = QApplication::activeModalWidget()) {
        return modal;
    }
    return dynamic_cast<QWidget*>(MainWindow());
}

class CHelpWindow : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(CHelpWindow)

public:
    CHelpWindow();

    void OpenTopic(const QString& topic);
    void ShowAbove(QWidget* owner);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void CreateList();
    void CreatePage();
    QLayout* CreateBar();
    QToolButton* CreateButton(QStyle::StandardPixmap icon, const QString& text, const QKeySequence& key,
                              void (QTextBrowser::*action)());
    void Follow(const QUrl& link);
    void PageOpened(const QUrl& page);
    void MoveTo(QWidget* owner);
    void FindTyped();
    void FindNext();
    void FindFrom(QTextCursor cursor);
    void FocusSearch();

    QListWidget* list_ = new QListWidget;
    QTextBrowser* page_ = new QTextBrowser;
    QLineEdit* search_ = new QLineEdit;
    QLabel* searchResult_ = new QLabel;
};

CHelpWindow::CHelpWindow()
    : QWidget(nullptr, Qt::Window) {
    setObjectName(QStringLiteral("Help"));
    setWindowIcon(LoadIcon("help"));
    CreateList();
    CreatePage();
    auto* splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(list_);
    splitter->addWidget(page_);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({kListWidth, kWindowSize.width() - kListWidth});
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(CreateBar());
    layout->addWidget(splitter, 1);
    resize(kWindowSize.boundedTo(screen()->availableSize() * kLargestShare));
    page_->setFocus();
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] { FocusSearch(); });
    connect(new QShortcut(Qt::Key_F3, this), &QShortcut::activated, this, [this] { FindNext(); });
}

void CHelpWindow::CreateList() {
    list_->setAccessibleName(tr("Topics"));
    list_->setSpacing(kListSpacing);
    for (const HelpTopic& topic : kTopics) {
        auto* item = new QListWidgetItem(QCoreApplication::translate("HelpViewer", topic.Title), list_);
        item->setData(Qt::UserRole, QLatin1String(topic.File));
    }
    connect(list_, &QListWidget::currentItemChanged, this,
            [this](const QListWidgetItem* item) { OpenTopic(item->data(Qt::UserRole).toString()); });
}

// Links are followed here and not by the browser, which would open anything.
void CHelpWindow::CreatePage() {
    page_->setAccessibleName(tr("Help page"));
    page_->setOpenLinks(false);
    page_->document()->setDefaultStyleSheet(QLatin1String(kPageStyle));
    page_->document()->setDocumentMargin(kPageMargin);
    connect(page_, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) { Follow(link); });
    connect(page_, &QTextBrowser::sourceChanged, this, [this](const QUrl& page) { PageOpened(page); });
}

QLayout* CHelpWindow::CreateBar() {
    auto* bar = new QHBoxLayout;
    auto* back = CreateButton(QStyle::SP_ArrowBack, tr("Back"), QKeySequence::Back, &QTextBrowser::backward);
    auto* forward =
        CreateButton(QStyle::SP_ArrowForward, tr("Forward"), QKeySequence::Forward, &QTextBrowser::forward);
    connect(page_, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(page_, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
    search_->setPlaceholderText(tr("Search in this page"));
    search_->setAccessibleName(tr("Search in this page"));
    search_->setClearButtonEnabled(true);
    search_->setFixedWidth(kSearchWidth);
    connect(search_, &QLineEdit::textChanged, this, [this] { FindTyped(); });
    connect(search_, &QLineEdit::returnPressed, this, [this] { FindNext(); });
    bar->addWidget(back);
    bar->addWidget(forward);
    bar->addStretch(1);
    bar->addWidget(searchResult_);
    bar->addWidget(search_);
    return bar;
}

QToolButton* CHelpWindow::CreateButton(QStyle::StandardPixmap icon, const QString& text,
                                       const QKeySequence& key, void (QTextBrowser::*action)()) {
    auto* button = new QToolButton;
    button->setText(text);
    button->setIcon(style()->standardIcon(icon));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setShortcut(key);
    button->setAutoRaise(true);
    button->setEnabled(false);
    connect(button, &QToolButton::clicked, page_, action);
    return button;
}

void CHelpWindow::OpenTopic(const QString& topic) {
    const QString file = RowOf(topic) >= 0 ? topic : QLatin1String(kTopics.front().File);
    const QUrl page(QStringLiteral("qrc:/help/") + file);
    if (page_->source() != page) {
        page_->setSource(page);
    }
}

void CHelpWindow::Follow(const QUrl& link) {
    if (link.scheme() == QLatin1String("qrc") && RowOf(link.fileName()) >= 0) {
        page_->setSource(link);
    }
}

void CHelpWindow::PageOpened(const QUrl& page) {
    const int row = RowOf(page.fileName());
    list_->setCurrentRow(row);
    setWindowTitle(tr("%1 - Help").arg(list_->item(row)->text()));
    searchResult_->clear();
}

// A modal dialog blocks every window that doesn't descend from it.
void CHelpWindow::ShowAbove(QWidget* owner) {
    MoveTo(owner);
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void CHelpWindow::MoveTo(QWidget* owner) {
    if (owner == parentWidget()) {
        return;
    }
    setParent(owner, windowFlags());
    if (owner != nullptr && owner->isModal()) {
        owner->installEventFilter(this);
    }
}

// The dialog that the help belongs to closes, and would take the help with it.
bool CHelpWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && !event->spontaneous() && watched == parentWidget()) {
        const bool shown = isVisible();
        watched->removeEventFilter(this);
        MoveTo(parentWidget()->parentWidget());
        setVisible(shown);
    }
    return QWidget::eventFilter(watched, event);
}

void CHelpWindow::FocusSearch() {
    search_->setFocus();
    search_->selectAll();
}

// What is typed is looked for from where the match so far begins.
void CHelpWindow::FindTyped() {
    QTextCursor cursor = page_->textCursor();
    cursor.setPosition(cursor.selectionStart());
    FindFrom(cursor);
}

void CHelpWindow::FindNext() { FindFrom(page_->textCursor()); }

void CHelpWindow::FindFrom(QTextCursor cursor) {
    const QString text = search_->text();
    QTextCursor found = page_->document()->find(text, cursor);
    if (found.isNull()) {
        found = page_->document()->find(text);
    }
    if (found.isNull()) {
        cursor.clearSelection();
        found = cursor;
    }
    page_->setTextCursor(found);
    searchResult_->setText(text.isEmpty() || found.hasSelection() ? QString() : tr("Not found"));
}

} // namespace

void ShowHelp(const QString& topic) {
    static const bool used = (UseHelpPages(), true);
    static QPointer<CHelpWindow> window;
    if (used && window.isNull()) {
        window = new CHelpWindow;
    }
    window->OpenTopic(topic);
    window->ShowAbove(HelpOwner());
}

} // namespace thntfs
