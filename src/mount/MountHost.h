#pragma once

#include "engine/Host.h"

namespace thntfs {

/// The engine's host while a mount is served: what fails is the reading program's concern, which gets an
/// error, so that here are log lines alone, no boxes, and no pause that would keep others waiting. Passes the
/// lines on to the host that was there before, which takes its place again at the end.
class MountHost : public EngineHost {
public:
    MountHost();
    ~MountHost() override;

    void LogEvent(const ProcessLogEntry& entry) override { before_.LogEvent(entry); }
    void ErrorBox(const std::string& text) override;
    void PauseOneSecond() override {}

private:
    EngineHost& before_;
    std::string lastError_; ///< a medium that is gone fails for each read alike
};

} // namespace thntfs
