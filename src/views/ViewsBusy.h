#pragma once

#include "engine/EngineState.h"
#include "shell/DesktopState.h"

namespace thntfs {

/// True while a job runs or a list is being filled: the views then take no orders from the user.
inline bool ViewsBusy() { return Engine.ScanRunFlag != 0 || Desktop.WaitDialog != nullptr; }

} // namespace thntfs
