#include "engine/Host.h"

#include "platform/media/LentDisk.h"

#include <chrono>
#include <thread>

namespace thntfs {

namespace {

EngineHost& SilentHost() {
    static EngineHost silent;
    return silent;
}

EngineHost* hostInUse = nullptr;

} // namespace

void EngineHost::LogEvent(const ProcessLogEntry& /*entry*/) {}
void EngineHost::JobProgress() {}
void EngineHost::ErrorBox(const std::string& /*text*/) {}
void EngineHost::MessageBox(const std::string& /*text*/, const std::string& /*caption*/, BoxIcon /*icon*/) {}
DiskAnswer EngineHost::AskForDisk(const std::string& /*devicePath*/, DiskUse /*use*/) { return {}; }
void EngineHost::PauseOneSecond() { std::this_thread::sleep_for(std::chrono::seconds(1)); }
void EngineHost::PassGate() {}
void EngineHost::SearchPosition(std::uint64_t /*sector*/, std::uint64_t /*endSector*/) {}
void EngineHost::PartitionFound(std::uint64_t /*startSector*/) {}
void EngineHost::CopyPosition(std::uint64_t /*sectorsDone*/, std::uint64_t /*totalSectors*/) {}

EngineHost& Host() { return hostInUse != nullptr ? *hostInUse : SilentHost(); }
void SetHost(EngineHost* host) { hostInUse = host; }

void LogLine(const std::string& name, const std::string& description, std::uint8_t status) {
    Host().LogEvent({name, description, "", status});
}

} // namespace thntfs
