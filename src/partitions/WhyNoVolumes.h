#pragma once

#include <string>

namespace thntfs {

/// Why ReadVolumes has found nothing on SourceDisk, a sentence for people; empty where an encrypted volume is
/// the reason. The tables are read once more, in silence.
std::string WhyNoVolumes();

} // namespace thntfs
