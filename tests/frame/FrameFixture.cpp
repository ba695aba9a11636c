#include "FrameFixture.h"

#include "platform/media/Medium.h"
#include "shell/Boxes.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "shell/PauseGate.h"
#include "support/BuildPaths.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QTreeView>
#include <chrono>
#include <filesystem>
#include <thread>

namespace thntfs::test {

namespace {

QString PlainTitle(const QAction& action) {
    return action.text().section(QLatin1Char('\t'), 0, 0).remove(QLatin1Char('&')).trimmed();
}

QAction* ActionTitled(const QList<QAction*>& actions, const QString& title) {
    for (QAction* action : actions) {
        if (PlainTitle(*action) == title) {
            return action;
        }
    }
    return nullptr;
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

std::string FrameFixture::SavedScanOf(const std::string& medium) {
    const std::string path = Folder / "saved.tht";
    const RunResult result = RunProgram(CliPath(), {"scan", medium, "--save-info", path});
    EXPECT_EQ(result.Status, 0) << result.Err;
    return path;
}

void FrameFixture::LoadByMenu(const std::string& path) {
    Answers.AnswerFile(QString::fromStdString(path));
    ChooseInMenu(
        {QStringLiteral("File"), QStringLiteral("Open Saved Scan Info"), QStringLiteral("Load Tree Info")});
}

void FrameFixture::WatchMedium() {
    Engine.SourceDisk.MediaHandle = MakeFaultyMedium(std::move(Engine.SourceDisk.MediaHandle), Plan);
}

void FrameFixture::AskForStopAtRead(std::uint64_t read) {
    Plan->OnRead = [this, read](std::uint64_t index, const ReadRequest& /*request*/) {
        if (index != read) {
            return;
        }
        while (pressing_) { // one key at a time
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        const auto press = [this] {
            PressKey(Qt::Key_F4);
            answered_ = true;
        };
        QMetaObject::invokeMethod(Frame.get(), press, Qt::QueuedConnection);
        while (!WorkerGate().IsClosed() && !answered_) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    };
}

void FrameFixture::PressKey(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    Frame->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Frame.get()));
    Frame->UpdateCommands();
    pressing_ = true;
    QTest::keyClick(Frame.get(), key, modifiers);
    pressing_ = false;
}

void FrameFixture::ChooseInMenu(const std::vector<QString>& titles) {
    QAction* action = ActionTitled(Frame->menuBar()->actions(), titles.front());
    ASSERT_NE(action, nullptr) << titles.front().toStdString();
    QTest::mouseClick(Frame->menuBar(), Qt::LeftButton, {},
                      Frame->menuBar()->actionGeometry(action).center());
    for (std::size_t i = 1; i < titles.size(); ++i) {
        QMenu* menu = action->menu();
        action = ActionTitled(menu->actions(), titles[i]);
        ASSERT_NE(action, nullptr) << titles[i].toStdString();
        if (action->menu() != nullptr) { // the mouse would have to wait for it to open
            menu->setActiveAction(action);
            QTest::keyClick(menu, Qt::Key_Right);
        } else {
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
        }
    }
}

bool FrameFixture::WaitForIdle() const {
    return WaitUntil([this] { return Frame->JobBusy == 0 && Engine.ScanRunFlag == 0; });
}

std::vector<std::string> FrameFixture::LogRows() const {
    std::vector<std::string> rows;
    for (const ProcessLogEntry& row : Frame->LogList->Log().Rows()) {
        rows.push_back(row.Name + " | " + row.Description + " | " + std::to_string(row.Status));
    }
    return rows;
}

std::string FrameFixture::TreeText() const {
    std::string text;
    AppendTree(*Frame->TreeView->model(), {}, 0, text);
    return text;
}

std::vector<std::string> FrameFixture::ListNames() const {
    const auto* details = Frame->ListView->findChild<QTreeView*>();
    std::vector<std::string> names;
    for (int row = 0; row < details->model()->rowCount(); ++row) {
        names.push_back(details->model()->index(row, 0).data().toString().toStdString());
    }
    return names;
}

} // namespace thntfs::test
