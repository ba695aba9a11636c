#include "disktools/CopyDisk.h"
#include "engine/EngineState.h"
#include "engine/Host.h"
#include "engine/SectorReader.h"

#include <algorithm>
#include <vector>

namespace thntfs {

namespace {

class BadSectorRetry {
public:
    BadSectorRetry(File& target, CopyLedger& ledger)
        : target_(target)
        , ledger_(ledger)
        , buffer_(sectorBytes_) {}

    void Run(unsigned passes) {
        while (pass_ < passes && Engine.ScanRunFlag != 0 && BytesOf(AreaState::Bad) != 0) {
            ++pass_;
            RunPass();
        }
        ledger_.Close(target_, {place_, EndStatus(), std::max(1U, pass_)});
    }

    void KeepWhatIsThere() {
        try {
            ledger_.Close(target_, {place_, '-', pass_});
        } catch (const CUserException&) {
            return;
        }
    }

private:
    void RunPass() {
        Engine.ProgressDone = 0;
        Engine.ProgressTotal = BytesOf(AreaState::Bad) / sectorBytes_;
        std::uint64_t sector = 0;
        while (const auto area = ledger_.Map().Find(AreaState::Bad, sector * sectorBytes_)) {
            sector = area->First / sectorBytes_;
            place_ = sector * sectorBytes_;
            Host().PassGate();
            if (Engine.ScanRunFlag == 0) {
                return;
            }
            TrySector(sector++);
            ++Engine.ProgressDone;
            Host().JobProgress();
            ledger_.Pass(target_, {place_, '-', pass_});
        }
        place_ = ledger_.Map().TotalBytes();
    }

    void TrySector(std::uint64_t sector) {
        std::fill(buffer_.begin(), buffer_.end(), std::uint8_t{0});
        const ErrorCode code = ReadSectorsOnce(buffer_, sector);
        if (code == kErrorNone) {
            Keep(sector);
        } else if (code == kErrorIoDevice) {
            Host().PauseOneSecond();
        } else if (code != kErrorCrc && code != kErrorSectorNotFound) {
            RaiseFatal(code);
        }
    }

    void Keep(std::uint64_t sector) {
        if (sector == 0) {
            StampFirstSector(buffer_);
        }
        const std::uint64_t offset = sector * sectorBytes_;
        if (WriteBlock(target_, offset, buffer_)) {
            ledger_.Mark(offset, sectorBytes_, AreaState::Read);
        }
    }

    [[nodiscard]] std::uint64_t BytesOf(AreaState state) const { return ledger_.Map().BytesOf(state); }

    [[nodiscard]] char EndStatus() const {
        if (BytesOf(AreaState::Unread) != 0) {
            return '?';
        }
        return Engine.ScanRunFlag != 0 ? '+' : '-';
    }

    File& target_;
    CopyLedger& ledger_;
    std::size_t sectorBytes_ = Engine.SourceDisk.BytesPerSector;
    std::vector<std::uint8_t> buffer_;
    std::uint64_t place_ = 0;
    unsigned pass_ = 0;
};

} // namespace

bool RetryBadSectors(File& target, unsigned passes, CopyLedger& ledger) {
    BadSectorRetry retry(target, ledger);
    try {
        retry.Run(passes);
    } catch (const CUserException& failure) {
        ledger.NoteFailure(failure.Code);
        retry.KeepWhatIsThere();
    }
    return Engine.ScanRunFlag != 0;
}

} // namespace thntfs
