#pragma once

#include <QSettings>

namespace thntfs {

inline constexpr const char* kProgramName = "Tarnholt Volume Salvage (NTFS)";
inline constexpr const char* kCompanyName = "Tarnholt Works Inc.";

/// What the program keeps from run to run, in the system's place for it.
inline QSettings OpenSettings() {
    return QSettings(QLatin1String(kCompanyName), QLatin1String(kProgramName));
}

} // namespace thntfs
