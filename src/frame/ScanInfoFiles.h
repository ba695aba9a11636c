#pragma once

#include <QCoreApplication>
#include <QString>
#include <functional>

class QWidget;

namespace thntfs {

class ProcessLog;
class RecentFiles;

/// The files that the user loads and saves: scan information of both kinds. Knows whether the scan that the
/// views show is in one.
class ScanInfoFiles {
    Q_DECLARE_TR_FUNCTIONS(ScanInfoFiles)

public:
    /// The dialogs stand over the owner, or over the wizard where that is what leads to them.
    /// What is saved goes into the list of recent files.
    ScanInfoFiles(QWidget& owner, RecentFiles& recent)
        : owner_(owner)
        , recent_(recent) {}

    /// What the views will show is about to be scanned.
    void NoteBasicScan();
    void NoteTurboScan();

    /// Whether the catalogue may be lost at the program's end without a question.
    [[nodiscard]] bool MayForgetCatalogue() const;
    /// Whether what the views show was scanned here and is in no file.
    [[nodiscard]] bool HasUnsavedScan() const { return scanUnsaved_; }

    // Where to load from; empty for Cancel.
    [[nodiscard]] QString ChooseTreeInfo() const;
    [[nodiscard]] QString ChoosePartitionInfo() const;

    /// Loads a scan's result; `show` is called once the catalogue can be shown. A file that can't be loaded
    /// has told so, and gives false.
    bool LoadTree(const QString& path, const std::function<void()>& show);

    /// Asks for a place and saves the scan's result there; false where it is in no file then.
    bool SaveTree();
    void SavePartitions() const;

private:
    QWidget& owner_;
    RecentFiles& recent_;
    bool scanInfoDirty_ = false; ///< a scan's result is in no file
    bool noScanYet_ = true;      ///< until the first Basic Scan or load
    bool scanUnsaved_ = false;   ///< what the views show was scanned here and is in no file
};

/// Asks for a place and saves the log's text there.
void SaveLog(QWidget& owner, const ProcessLog& log);

} // namespace thntfs
