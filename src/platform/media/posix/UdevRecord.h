#pragma once

#include <map>
#include <string>

namespace thntfs {

/// What the device manager has found out about a device: its "E:" lines by name. Empty where it keeps no
/// record.
class UdevRecord {
public:
    explicit UdevRecord(const std::string& path);

    /// A value, trimmed; empty where there is none.
    [[nodiscard]] std::string Value(const std::string& name) const;

    /// A value with "\x20" and the like turned back into what they stand for.
    [[nodiscard]] std::string Unescaped(const std::string& name) const;

private:
    std::map<std::string, std::string> values_;
};

/// Text without control characters and without blanks at its ends.
std::string TrimmedText(const std::string& text);

} // namespace thntfs
