#include "preview/HexText.h"

#include <QByteArray>
#include <algorithm>

namespace thntfs {

namespace {

constexpr int kDashAt = HexPairAt(8) - 2;
constexpr std::size_t kHalfLine = kHexLineBytes / 2;
constexpr const char* kDigits = "0123456789ABCDEF";

std::uint8_t LowerCase(std::uint8_t byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<std::uint8_t>(byte - 'A' + 'a') : byte;
}

bool IsLetterOrDigit(std::uint8_t byte) {
    const std::uint8_t lower = LowerCase(byte);
    return (lower >= 'a' && lower <= 'z') || (byte >= '0' && byte <= '9');
}

template <typename Text>
void PutPair(Text& text, std::size_t place, std::uint8_t byte) {
    text[place] = kDigits[byte >> 4U];
    text[place + 1] = kDigits[byte & 15U];
}

std::vector<std::uint8_t> BytesOf(const void* data, std::size_t bytes) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    return {first, first + bytes};
}

} // namespace

QString HexOffsetText(std::uint64_t line) {
    constexpr int kOffsetDigits = 8;
    const QString digits = QString::number(line * kHexLineBytes, 16).toUpper();
    return digits.rightJustified(kOffsetDigits, QLatin1Char('0'));
}

QString HexLineText(ConstBytes bytes) {
    std::string text(kHexPartChars, ' ');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        PutPair(text, static_cast<std::size_t>(HexPairAt(static_cast<int>(i))), bytes[i]);
    }
    if (bytes.size() > kHalfLine) {
        text[kDashAt] = '-';
    }
    for (const std::uint8_t byte : bytes) {
        text += IsLetterOrDigit(byte) ? static_cast<char>(byte) : '.';
    }
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

QString HexCopyText(ConstBytes bytes) {
    QByteArray text(static_cast<qsizetype>(bytes.size() * 3), ' ');
    char* place = text.data();
    for (const std::uint8_t byte : bytes) {
        PutPair(place, 0, byte);
        place += 3;
    }
    text.chop(1);
    return QString::fromLatin1(text);
}

QString PlainCopyText(ConstBytes bytes) {
    QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    for (QChar& shown : text) {
        const bool plain = shown.isPrint() || shown.isSurrogate() || shown == QLatin1Char('\t') ||
                           shown == QLatin1Char('\n') || shown == QLatin1Char('\r');
        shown = plain && shown != QChar(QChar::ReplacementCharacter) ? shown : QChar(QLatin1Char('.'));
    }
    return text;
}

std::optional<HexPattern> TextPattern(const QString& text) {
    if (text.isEmpty()) {
        return std::nullopt;
    }
    const QByteArray narrow = text.toUtf8();
    std::vector<std::uint8_t> wide;
    for (const QChar unit : text) {
        wide.push_back(unit.cell());
        wide.push_back(unit.row());
    }
    return HexPattern{{BytesOf(narrow.data(), static_cast<std::size_t>(narrow.size())), wide}, true};
}

std::optional<HexPattern> BytesPattern(const QString& text) {
    QString digits = text;
    digits.remove(QLatin1Char(' '));
    const QByteArray latin = digits.toLatin1();
    const QByteArray bytes = QByteArray::fromHex(latin);
    if (bytes.isEmpty() || bytes.toHex() != latin.toLower()) {
        return std::nullopt;
    }
    return HexPattern{{BytesOf(bytes.data(), static_cast<std::size_t>(bytes.size()))}, false};
}

std::optional<HexMatch> FindPattern(ConstBytes bytes, const HexPattern& pattern, std::uint64_t from) {
    const auto alike = [ignore = pattern.IgnoreCase](std::uint8_t a, std::uint8_t b) {
        return a == b || (ignore && LowerCase(a) == LowerCase(b));
    };
    const auto start =
        bytes.begin() + static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(from, bytes.size()));
    auto end = bytes.end();
    std::optional<HexMatch> match;
    for (const std::vector<std::uint8_t>& choice : pattern.Choices) {
        const auto found = std::search(start, end, choice.begin(), choice.end(), alike);
        if (found != end) {
            match = {static_cast<std::uint64_t>(found - bytes.begin()), choice.size()};
            // What another choice might still find begins in front of this one.
            const auto most = static_cast<std::ptrdiff_t>(2 * choice.size());
            end = bytes.end() - found > most ? found + most : bytes.end();
        }
    }
    return match;
}

} // namespace thntfs
