#pragma once

#include "catalogue/CatalogueReader.h"
#include "catalogue/CountBelow.h"
#include "shell/JobThread.h"
#include "shell/MessageTarget.h"

#include <QCoreApplication>
#include <QTabWidget>
#include <atomic>
#include <memory>

class QGridLayout;
class QLineEdit;

namespace thntfs {

struct EntryFacts;

/// All that is known of one entry, as fields that can be read and copied. A worker counts what is below a
/// folder, and then reads the entry's record.
class CPropertiesTabCtrl : public QTabWidget, public MessageTarget {
    Q_DECLARE_TR_FUNCTIONS(CPropertiesTabCtrl)

public:
    /// Begins the work. `sheet` gets WM_PROPS_CLOSE; it is the caller's and lives longer.
    CPropertiesTabCtrl(const CatalogueItem& entry, MessageTarget& sheet, QWidget* parent);

    ~CPropertiesTabCtrl() override;

    /// Asks the worker to end. False where none works, and the sheet may close; else it is told to by
    /// WM_PROPS_CLOSE once the worker is through.
    bool Stop();

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

private:
    enum class Work { None, Running, Stopping };

    void CreateHead();
    void CreateAttributes();
    void AddRule();
    void AddRow(const QString& caption, QWidget* value);
    QLineEdit* AddLine(const QString& caption, const QString& text);
    void ShowProgress(const BelowCounts& below);
    void ShowCounts();
    void ShowFacts(const EntryFacts& facts);
    void DoWork();
    void CountFolder(std::uint32_t blockOffset);

    MessageTarget& sheet_;
    CatalogueItem entry_; ///< its Size is the running total while a folder is counted
    BelowCounts below_;
    QGridLayout* fields_;
    QLineEdit* size_ = nullptr;
    QLineEdit* contains_ = nullptr; ///< of a folder
    QWidget* last_ = nullptr;       ///< the last part in the order of Tab
    bool leaving_ = false;          ///< being destroyed, with the sheet
    std::atomic<bool> counting_{false};
    std::atomic<Work> work_{Work::Running};
    std::unique_ptr<JobThread> countThread_;
};

} // namespace thntfs
