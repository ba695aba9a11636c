#pragma once

namespace thntfs {

class Medium;

/// Whether a VHDX was not closed as it should be and has changes in its log that belong into its tables. The
/// library doesn't look at the log: it would show tables as they were, or half-written ones.
bool HasVhdxLogPending(Medium& file);

} // namespace thntfs
