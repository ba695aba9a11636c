#include "FrameFixture.h"

#include "catalogue/Catalogue.h"
#include "platform/media/Medium.h"
#include "shell/Boxes.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "shell/ProcessLogList.h"

#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QRegularExpression>
#include <QTest>
#include <algorithm>
#include <filesystem>

namespace thntfs::test {

namespace {

// Without key, mnemonic, and the marks of a language that a test may have made.
QString PlainTitle(const QAction& action) {
    static const QRegularExpression others(QStringLiteral("[&«»]"));
    return action.text().section(QLatin1Char('\t'), 0, 0).remove(others).trimmed();
}

QAction& ActionTitled(const QList<QAction*>& actions, const QString& title) {
    const auto found = std::find_if(actions.begin(), actions.end(),
                                    [&](const QAction* action) { return PlainTitle(*action) == title; });
    EXPECT_NE(found, actions.end()) << title.toStdString();
    return **found;
}

void AppendTree(const QAbstractItemModel& model, const QModelIndex& parent, int depth, std::string& text) {
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        text += std::string(static_cast<std::size_t>(depth) * 2, ' ') +
                index.data().toString().toStdString() + "\n";
        AppendTree(model, index, depth + 1, text);
    }
}

} // namespace

FrameFixture::FrameFixture() {
    std::filesystem::create_directory(Folder / "catalogue");
    Engine.CatalogueFolder = Folder / "catalogue";
    ResetEngineState();
    Desktop.StructuresMissing = false;
    Desktop.TurboScanUsed = false;
    Answers.Passed = QStringLiteral("Disk Opening Error"); // this machine's own
    Frame = std::make_unique<CMainFrame>();
    Frame->resize(1100, 750);
    Frame->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Frame.get()));
}

FrameFixture::~FrameFixture() {
    Plan->OnRead = nullptr;
    Engine.ScanRunFlag = 0;
    RefuseBoxes(true);
    EXPECT_TRUE(WaitForIdle());
    Frame.reset();
    RefuseBoxes(false);
    CloseCatalogue();
    ResetEngineState();
}

std::string FrameFixture::SavedScanOf(const std::string& medium, std::vector<std::string> options) {
    const std::string path = Folder / "saved.tht";
    options.insert(options.begin(), {"scan", medium, "--save-info", path});
    const RunResult result = RunProgram(CliPath(), options);
    EXPECT_EQ(result.Status, 0) << result.Err;
    return path;
}

void FrameFixture::LoadByMenu(const std::string& path) {
    Answers.AnswerFile(QString::fromStdString(path));
    ChooseInMenu(kLoadTree);
}

void FrameFixture::WatchMedium() {
    Engine.SourceDisk.MediaHandle = MakeFaultyMedium(std::move(Engine.SourceDisk.MediaHandle), Plan);
}

void FrameFixture::AtRead(std::uint64_t read, const std::function<void()>& act) {
    Plan->OnRead = [this, read, act](std::uint64_t index, const ReadRequest& /*request*/) {
        if (index == read) {
            QMetaObject::invokeMethod(Frame.get(), act, Qt::BlockingQueuedConnection);
        }
    };
}

void FrameFixture::PressKey(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    Frame->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Frame.get()));
    RunEvents();
    QTest::keyClick(Frame.get(), key, modifiers);
}

bool FrameFixture::Drop(const std::string& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(Frame.get(), &enter);
    if (enter.isAccepted()) {
        QDropEvent drop({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(Frame.get(), &drop);
    }
    return enter.isAccepted();
}

void FrameFixture::ChooseInMenu(const char* path) {
    RunEvents();
    QStringList titles = QString::fromLatin1(path).split(QLatin1Char('/'));
    QMenuBar* bar = Frame->menuBar();
    QAction* action = &ActionTitled(bar->actions(), titles.takeFirst());
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(action).center());
    for (const QString& title : titles) {
        QMenu* menu = action->menu();
        action = &ActionTitled(menu->actions(), title);
        if (action->menu() != nullptr) { // the mouse would have to wait for it to open
            menu->setActiveAction(action);
            QTest::keyClick(menu, Qt::Key_Right);
        } else {
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
        }
    }
}

bool FrameFixture::WaitForIdle() {
    return WaitUntil([this] { return Command("Wizard").isEnabled(); });
}

QAction& FrameFixture::Command(const char* title) const {
    return ActionTitled(Frame->actions(), QLatin1String(title));
}

bool FrameFixture::IsOffered(const char* title) const {
    RunEvents();
    return Command(title).isEnabled();
}

std::set<std::string> FrameFixture::Greyed() const {
    RunEvents();
    std::set<std::string> titles;
    for (const QAction* action : Frame->actions()) {
        if (action->isVisible() && !action->isEnabled()) {
            titles.insert(PlainTitle(*action).toStdString());
        }
    }
    return titles;
}

const ProcessLog& FrameFixture::Log() const { return Find<CProcessLogList>("LogList").Log(); }

std::vector<std::string> FrameFixture::LogRows() const {
    std::vector<std::string> rows;
    for (const ProcessLogEntry& row : Log().Rows()) {
        rows.push_back(row.Name + " | " + row.Description + " | " + std::to_string(row.Status));
    }
    return rows;
}

std::string FrameFixture::TreeText() const {
    std::string text;
    AppendTree(*Tree().model(), {}, 0, text);
    return text;
}

std::string FrameFixture::Pane(int number) const {
    const QString name = QStringLiteral("StatusPane%1").arg(number);
    return Frame->findChild<QLabel*>(name)->text().toStdString();
}

} // namespace thntfs::test
