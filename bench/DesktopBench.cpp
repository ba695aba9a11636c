// Figures of the desktop program's views, without a screen. Prints one "name=milliseconds" a line.
//   desktop-bench SAVED.tht            a saved scan; its folder with the most files is the one that is listed
//   desktop-bench SAVED.tht FOLDER     saves all of it to a folder, and measures nothing else

#include "catalogue/CatalogueReader.h"
#include "dialogs/SaveWishes.h"
#include "engine/EngineState.h"
#include "frame/FindSearch.h"
#include "frame/MainFrame.h"
#include "platform/files/WorkFolder.h"
#include "shell/Boxes.h"
#include "shell/DesktopHost.h"
#include "shell/DesktopState.h"
#include "shell/JobThread.h"
#include "shell/WindowMessages.h"
#include "views/FolderNodes.h"
#include "views/THNTFSListView.h"
#include "views/THNTFSTreeView.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QTimer>
#include <QTreeView>
#include <algorithm>
#include <cstdio>
#include <optional>

namespace {

using namespace thntfs;

constexpr int kLogRows = 50000;
constexpr int kScrollSteps = 200;
constexpr int kFindHits = 10000;
constexpr int kColumns = 7;

template <typename Work>
double MillisecondsOf(Work work) {
    QElapsedTimer since;
    since.start();
    work();
    QCoreApplication::processEvents();
    return static_cast<double>(since.nsecsElapsed()) / 1e6;
}

void Print(const char* name, double milliseconds) { std::printf("%s=%.1f\n", name, milliseconds); }

template <typename View>
View& Find(const CMainFrame& frame, const char* name) {
    return dynamic_cast<View&>(*frame.findChild<QWidget*>(QLatin1String(name)));
}

FolderNode BiggestFolder() {
    const FolderNodes folders = CollectFolders();
    return *std::max_element(
        folders.Nodes.begin(), folders.Nodes.end(),
        [](const FolderNode& left, const FolderNode& right) { return left.DirectFiles < right.DirectFiles; });
}

// From the start of the job to its end, the tree filled; nobody has to close its box.
void MeasureScan(CMainFrame& frame) {
    RefuseBoxes(true);
    Print("basic_scan", MillisecondsOf([&] {
              frame.BeginBasicScan();
              while (Engine.ScanRunFlag != 0) {
                  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
              }
          }));
    RefuseBoxes(false);
}

void MeasureList(CTHNTFSListView& list) {
    const FolderNode folder = BiggestFolder();
    std::printf("list_files=%u\n", folder.DirectFiles);
    Print("list_fill", MillisecondsOf([&] { WM_LIST_SHOW_FOLDER.Send(&list, folder.EntryId); }));
    constexpr std::array<SortKind, kColumns> kKinds{
        SortKind::Text, SortKind::WholeNumber, SortKind::Text,       SortKind::Date,
        SortKind::Date, SortKind::Text,        SortKind::WholeNumber};
    double slowest = 0;
    for (int column = 0; column < kColumns; ++column) {
        slowest = std::max(slowest, MillisecondsOf([&] { list.SortList(column, false, kKinds[column]); }));
    }
    Print("list_slowest_sort", slowest);

    auto* details = list.findChild<QTreeView*>();
    QScrollBar* bar = details->verticalScrollBar();
    double slowestStep = 0;
    for (int step = 0; step <= kScrollSteps; ++step) {
        slowestStep = std::max(slowestStep, MillisecondsOf([&] {
                                   bar->setValue(bar->maximum() / kScrollSteps * step);
                                   details->viewport()->repaint();
                               }));
    }
    Print("list_slowest_scroll_step", slowestStep);
}

// A pattern that stands nowhere, and many hits of one that stands nearly everywhere, one by one.
void MeasureFind(CTHNTFSTreeView& tree, CTHNTFSListView& list) {
    RefuseBoxes(true);
    FindSearch find(tree, list);
    FindState state;
    state.FindPattern = "stands nowhere";
    Print("find_nothing", MillisecondsOf([&] { find.Begin(state); }));
    state.FindPattern = "*";
    Print("find_first", MillisecondsOf([&] { find.Begin(state); }));
    int hits = 1;
    Print("find_next_hits", MillisecondsOf([&] {
              while (hits < kFindHits && find.SearchFolder() != 0) {
                  ++hits;
              }
          }));
    std::printf("find_hits=%d\n", hits);
    RefuseBoxes(false);
}

// The whole road of a user who takes both dialogs as they stand.
void MeasureSave(CMainFrame& frame, const char* folder) {
    SaveWishes wishes;
    wishes.Folder = QString::fromLocal8Bit(folder);
    wishes.UsesPrefix = true; // nothing is asked for names
    wishes.Prefix = QStringLiteral("again-");
    KeepSaveWishes(wishes);
    RefuseBoxes(true);
    QTimer accepting;
    QObject::connect(&accepting, &QTimer::timeout, [] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            dialog->accept();
        }
    });
    accepting.start(0);
    Engine.MarkedEntries = {kTopEntryId};
    Print("save_all", MillisecondsOf([&] {
              WM_SAVE_REQUEST.Send(&frame, 0);
              accepting.stop();
              while (Engine.ScanRunFlag != 0) {
                  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
              }
          }));
}

// Each key in the filter until the rows that it leaves stand there, of all that the catalogue has in one
// list: letters that narrow it step by step, and back; once more with all rows selected.
void MeasureNarrowing(CTHNTFSTreeView& tree, CTHNTFSListView& list) {
    FindSearch find(tree, list);
    FindState state;
    state.FindPattern = "*";
    Print("find_all_in_one_list", MillisecondsOf([&] { find.Begin(state, true); }));
    std::printf("narrow_rows=%d\n", list.RowCount());
    auto* field = list.parentWidget()->findChild<QLineEdit*>();
    auto* details = list.findChild<QTreeView*>();
    for (const char* name : {"narrow_slowest_key", "narrow_slowest_key_all_selected"}) {
        double slowest = 0;
        for (const int key :
             {Qt::Key_E, Qt::Key_A, Qt::Key_T, Qt::Key_Backspace, Qt::Key_Backspace, Qt::Key_Backspace}) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier,
                            key == Qt::Key_Backspace ? QString() : QString(QChar(key)).toLower());
            const double last = MillisecondsOf([&] {
                QCoreApplication::sendEvent(field, &press);
                details->viewport()->repaint();
            });
            slowest = std::max(slowest, last);
        }
        Print(name, slowest);
        details->selectAll();
    }
    list.GoToTop();
}

void MeasureLog(CMainFrame& frame) {
    const auto send = [] {
        ProcessLogEntry entry{"Drive access error @ sector =12345 (Code =23)", "Data error.", "", kLogFailed};
        for (int i = 0; i < kLogRows; ++i) {
            Host().LogEvent(entry);
        }
    };
    for (const char* name : {"log_first_rows", "log_next_rows"}) {
        bool sent = false;
        Print(name, MillisecondsOf([&] {
                  const JobThread worker([&] {
                      send();
                      QMetaObject::invokeMethod(
                          &frame, [&sent] { sent = true; }, Qt::QueuedConnection);
                  });
                  while (!sent) {
                      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                  }
              }));
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: desktop-bench SAVED.tht [FOLDER]\n");
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    WorkFolder folder;
    if (folder.Create() != kErrorNone) {
        return 1;
    }
    Engine.CatalogueFolder = folder.Path();
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder.Path())); // the user's own settings stay
    PrepareBoxes();
    SetHost(&TheDesktopHost());
    CMainFrame frame;
    frame.show();
    QCoreApplication::processEvents();
    Print("load", MillisecondsOf([&] { frame.OpenFile(QString::fromLocal8Bit(argv[1])); }));
    auto& tree = Find<CTHNTFSTreeView>(frame, "TreeView");
    if (tree.IsEmpty()) {
        std::fprintf(stderr, "%s can't be loaded\n", argv[1]);
        return 1;
    }
    if (argc == 3) {
        MeasureSave(frame, argv[2]);
        SetHost(nullptr);
        return 0;
    }
    std::printf("entries=%llu\nfolders=%u\n", static_cast<unsigned long long>(CatalogueEntryCount()),
                Desktop.TotalFolders);
    Print("tree_fill", MillisecondsOf([&] { tree.FillTree(); }));
    MeasureFind(tree, Find<CTHNTFSListView>(frame, "ListView"));
    MeasureNarrowing(tree, Find<CTHNTFSListView>(frame, "ListView"));
    MeasureScan(frame);
    MeasureList(Find<CTHNTFSListView>(frame, "ListView"));
    MeasureLog(frame);
    SetHost(nullptr);
    return 0;
}
