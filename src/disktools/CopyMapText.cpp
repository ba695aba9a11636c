#include "disktools/CopyMapText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>
#include <vector>

namespace thntfs {

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kStates = "?*/-+";
constexpr std::string_view kPlaceStates = "?*/-+FG";

void AppendComment(std::string& out, std::string_view comment) {
    while (!comment.empty()) {
        const std::size_t end = std::min(comment.find('\n'), comment.size());
        out += "# ";
        out += comment.substr(0, end);
        out += '\n';
        comment.remove_prefix(std::min(end + 1, comment.size()));
    }
}

template <typename... Values>
void AppendLine(std::string& out, const char* format, Values... values) {
    std::array<char, 80> line{};
    std::snprintf(line.data(), line.size(), format, values...);
    out += line.data();
}

using Words = std::vector<std::string_view>;

Words WordsOf(std::string_view line) {
    Words words;
    while (true) {
        line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
        if (line.empty()) {
            return words;
        }
        const std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
        words.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
}

/// A number as "0x1F" or "31".
bool ReadNumber(std::string_view word, std::uint64_t& number) {
    const bool hexadecimal = word.starts_with("0x") || word.starts_with("0X");
    word.remove_prefix(hexadecimal ? 2 : 0);
    const auto result =
        std::from_chars(word.data(), word.data() + word.size(), number, hexadecimal ? 16 : 10);
    return result.ec == std::errc{} && result.ptr == word.data() + word.size();
}

bool IsOneOf(std::string_view word, std::string_view letters) {
    return word.size() == 1 && letters.find(word[0]) != std::string_view::npos;
}

AreaState StateOf(char letter) {
    return letter == '+' ? AreaState::Read : letter == '-' ? AreaState::Bad : AreaState::Unread;
}

/// Takes the lines that tell something, one after the other.
class MapReader {
public:
    explicit MapReader(std::uint64_t totalBytes)
        : map_(totalBytes) {}

    /// False for a line that can't stand where it does.
    bool Take(const Words& words) {
        if (!placeSeen_) {
            placeSeen_ = true;
            std::uint64_t position = 0;
            return words.size() >= 2 && ReadNumber(words[0], position) && IsOneOf(words[1], kPlaceStates);
        }
        std::uint64_t first = 0;
        std::uint64_t size = 0;
        if (words.size() != 3 || !ReadNumber(words[0], first) || !ReadNumber(words[1], size) ||
            !IsOneOf(words[2], kStates)) {
            return false;
        }
        return TakeArea(first, size, StateOf(words[2][0]));
    }

    [[nodiscard]] bool CoversAll() const { return placeSeen_ && end_ == map_.TotalBytes(); }
    [[nodiscard]] bool EndsBehind() const { return beyond_; }
    CopyMap&& Map() { return std::move(map_); }

private:
    bool TakeArea(std::uint64_t first, std::uint64_t size, AreaState state) {
        if (size > map_.TotalBytes() - end_) {
            beyond_ = true;
            return false;
        }
        if (first != end_ || size == 0 || ++areas_ > CopyMap::kMaxAreas) {
            return false;
        }
        map_.Mark(first, size, state);
        end_ += size;
        return true;
    }

    CopyMap map_;
    std::uint64_t end_ = 0;
    std::size_t areas_ = 0;
    bool placeSeen_ = false;
    bool beyond_ = false;
};

constexpr const char* kOtherSize = "it is the map of a source of another size";

} // namespace

std::string TextOfMap(const CopyMap& map, const CopyPlace& place, std::string_view comment) {
    std::string text;
    text.reserve(map.AreaCount() * 36 + 512);
    AppendComment(text, comment);
    text += "# current_pos  current_status  current_pass\n";
    AppendLine(text, "0x%08llX     %c               %u\n", static_cast<unsigned long long>(place.Position),
               place.Status, place.Pass);
    text += "#      pos        size  status\n";
    map.ForEach([&text](const Area& area) {
        AppendLine(text, "0x%08llX  0x%08llX  %c\n", static_cast<unsigned long long>(area.First),
                   static_cast<unsigned long long>(area.Size), static_cast<char>(area.State));
    });
    return text;
}

std::optional<CopyMap> MapOfText(std::string_view text, std::uint64_t totalBytes, std::string& why) {
    MapReader reader(totalBytes);
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const Words words = WordsOf(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!words.empty() && !words[0].starts_with('#') && !reader.Take(words)) {
            why = reader.EndsBehind() ? kOtherSize : "line " + std::to_string(number) + " makes no sense";
            return std::nullopt;
        }
    }
    if (!reader.CoversAll()) {
        why = kOtherSize;
        return std::nullopt;
    }
    return reader.Map();
}

} // namespace thntfs
