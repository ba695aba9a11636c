#include "platform/media/posix/UdevRecord.h"

#include <algorithm>
#include <fstream>

namespace thntfs {

namespace {

int DigitOf(char letter) {
    if (letter >= '0' && letter <= '9') {
        return letter - '0';
    }
    return letter >= 'a' && letter <= 'f'   ? letter - 'a' + 10
           : letter >= 'A' && letter <= 'F' ? letter - 'A' + 10
                                            : -1;
}

} // namespace

UdevRecord::UdevRecord(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        const std::size_t equals = line.find('=');
        if (line.starts_with("E:") && equals != std::string::npos) {
            values_[line.substr(2, equals - 2)] = line.substr(equals + 1);
        }
    }
}

std::string UdevRecord::Value(const std::string& name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? std::string() : TrimmedText(found->second);
}

std::string UdevRecord::Unescaped(const std::string& name) const {
    const std::string raw = Value(name);
    std::string text;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const bool escaped = raw[i] == '\\' && i + 3 < raw.size() && raw[i + 1] == 'x' &&
                             DigitOf(raw[i + 2]) >= 0 && DigitOf(raw[i + 3]) >= 0;
        text += escaped ? static_cast<char>(DigitOf(raw[i + 2]) * 16 + DigitOf(raw[i + 3])) : raw[i];
        i += escaped ? 3 : 0;
    }
    return TrimmedText(text);
}

std::string TrimmedText(const std::string& text) {
    std::string kept;
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
                 [](char c) { return static_cast<unsigned char>(c) >= 0x20 && c != 0x7F; });
    const std::size_t first = std::min(kept.find_first_not_of(' '), kept.size());
    const std::size_t last = kept.find_last_not_of(' ');
    return first == kept.size() ? std::string() : kept.substr(first, last + 1 - first);
}

} // namespace thntfs
