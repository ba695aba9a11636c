#include "mount/MountHost.h"

namespace thntfs {

MountHost::MountHost()
    : before_(Host()) {
    SetHost(this);
}

MountHost::~MountHost() { SetHost(&before_); }

void MountHost::ErrorBox(const std::string& text) {
    if (text != lastError_) {
        LogLine("A read of the mounted volume failed", text, kLogFailed);
        lastError_ = text;
    }
}

} // namespace thntfs
