#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <functional>
#include <memory>

namespace thntfs {

/// The catalogue as a folder for other programs: another process of this program mounts a private copy of the
/// scan, so that scans and mounts keep out of each other's way.
class FolderMount {
    Q_DECLARE_TR_FUNCTIONS(FolderMount)

public:
    /// Shows a folder to the user.
    using Show = std::function<void(const QString& folder)>;

    /// Without words the folder is shown in the file manager.
    explicit FolderMount(Show show = {});
    /// Unmounts.
    ~FolderMount();
    FolderMount(const FolderMount&) = delete;
    FolderMount& operator=(const FolderMount&) = delete;

    /// Shows the folder, mounted before if it isn't. Where that fails a box tells why. `program`: what is
    /// started, empty for this program itself. The catalogue must be open, and no job may run.
    void Open(const QString& program = {});

    /// Unmounts, as the catalogue is about to go. Waits until it is done, a few seconds at the most.
    void End();

    /// The folder, empty while there is none.
    [[nodiscard]] QString Folder() const { return mounted_ ? folder_ : QString(); }

private:
    void Start(const QString& program);
    bool MakeFolder();
    bool KeepScan();
    void Run(const QString& program);
    void TakeOutput();
    void TakeEnd();
    void RemoveFolder();
    void TellFailure(const QString& reason);

    Show show_;
    QProcess process_;
    std::unique_ptr<QTemporaryDir> scan_; ///< holds the copy until the other process has it
    QString folder_;
    bool mounted_ = false;
};

} // namespace thntfs
