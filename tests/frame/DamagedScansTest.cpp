// Saved scans with damage in their catalogue, through the eyes of the views: whatever a file says, the window
// lives and shows something or nothing.

#include "FrameFixture.h"
#include "shell/DesktopState.h"

#include <QAbstractItemModel>
#include <QTest>
#include <QTreeView>
#include <fstream>
#include <random>

namespace thntfs::test {
namespace {

constexpr int kFiles = 150;
constexpr std::uint_fast32_t kMostChanges = 12;
constexpr std::size_t kHeadBytes = 546; // the medium's record, whose damage keeps a file from being loaded
constexpr int kFoldersLookedAt = 12;

class DamagedScans : public FrameFixture {
protected:
    std::string Damaged(const std::string& sound) {
        std::string bytes = sound;
        for (std::uint_fast32_t change = random_() % kMostChanges + 1; change > 0; --change) {
            const std::size_t place = kHeadBytes + random_() % (bytes.size() - kHeadBytes);
            bytes[place] = static_cast<char>(random_());
        }
        if (random_() % 8 == 0) {
            bytes.resize(kHeadBytes + random_() % (bytes.size() - kHeadBytes));
        }
        return bytes;
    }

    /// Every text of the first folders and of their lists is asked for, and each is marked.
    void LookAround() {
        auto& tree = *Frame->TreeView;
        auto& rows = *Frame->ListView->findChild<QTreeView*>()->model();
        tree.expandToDepth(4);
        QModelIndex index = tree.model()->index(0, 0);
        for (int i = 0; i < kFoldersLookedAt && index.isValid(); ++i) {
            tree.setCurrentIndex(index);
            QTest::keyClick(&tree, Qt::Key_Return);
            for (int row = 0; row < rows.rowCount(); ++row) {
                for (int column = 0; column < rows.columnCount(); ++column) {
                    texts_ += rows.index(row, column).data().toString().size();
                }
            }
            Frame->ListView->SortList(i % rows.columnCount(), i % 2 == 0, SortKind::Text);
            const QRect item = tree.visualRect(index);
            QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, {item.left() + 8, item.center().y()});
            index = tree.indexBelow(index);
        }
    }

    std::mt19937 random_{20261122};
    qsizetype texts_ = 0;
};

TEST_F(DamagedScans, LeaveTheWindowAlive) {
    const std::string sound = ReadWholeFile(SavedScanOf(Volume("names.img")));
    const std::string path = Folder / "damaged.tht";
    int loaded = 0;
    for (int file = 0; file < kFiles; ++file) {
        std::ofstream(path, std::ios::binary) << Damaged(sound);
        Answers.Answer(QMessageBox::Yes); // where the damage looks like another medium
        Frame->LoadTreeInfoFrom(QString::fromStdString(path));
        loaded += Frame->TreeView->IsEmpty() ? 0 : 1;
        LookAround();
        EXPECT_EQ(Desktop.WaitDialog, nullptr);
        EXPECT_TRUE(Frame->ActionOf(kCmdLoadTreeInfo)->isEnabled());
    }
    EXPECT_GT(loaded, kFiles / 4);
    EXPECT_GT(texts_, 0);
    EXPECT_GE(Frame->LogList->Log().Rows().size(), 2U * kFiles);
}

} // namespace
} // namespace thntfs::test
