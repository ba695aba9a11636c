#pragma once

#include "partitions/PartitionSearch.h"
#include "shell/JobThread.h"
#include "shell/MessageTarget.h"
#include "shell/WorkTime.h"

#include <QCoreApplication>
#include <QDialog>
#include <QTimer>
#include <cstdint>
#include <memory>
#include <optional>

class QLabel;
class QProgressBar;
class QPushButton;

namespace thntfs {

class CRowTable;

/// What a search is to cover.
struct SearchRequest {
    SearchMethod ScanMethod = SearchMethod::Quick;
    std::uint64_t FirstSector = 0;
    std::uint64_t EndSector = 0; ///< not included
};

/// Runs a search on a worker and shows how it comes along. Closes when the search has ended, and in no other
/// way.
class CLogicalDrivesFound : public QDialog, public MessageTarget {
    Q_DECLARE_TR_FUNCTIONS(CLogicalDrivesFound)

public:
    CLogicalDrivesFound(QWidget* owner, const SearchRequest& request);
    ~CLogicalDrivesFound() override;

    /// Returns when the search has ended, its worker included. The candidates stand in SourceDisk.
    void Run();

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

    /// Does nothing.
    void reject() override {}

private:
    void LayOut();
    void StartSearch();
    void ShowPosition(std::uint32_t position, std::uint32_t total);
    void AddPartition(std::uint32_t startSector);
    void AskToAbort();
    void EndSearch();
    [[nodiscard]] QString EndText() const;
    [[nodiscard]] QString MethodText() const;
    [[nodiscard]] bool IsThorough() const { return request_.ScanMethod == SearchMethod::Thorough; }

    SearchRequest request_;
    CRowTable* partitions_;
    QLabel* percent_;
    QLabel* position_;
    QLabel* time_;
    QProgressBar* bar_;
    QPushButton* abort_;
    int lastPercent_ = 0;
    std::uint8_t foundCount_ = 0;
    WorkTime workTime_;
    QTimer timeTimer_;
    bool asking_ = false;        ///< the abort question stands
    bool over_ = false;          ///< the search has ended and the user knows
    std::optional<bool> ranOut_; ///< once the search has ended: false where it was stopped
    std::unique_ptr<JobThread> searchThread_;
};

} // namespace thntfs
