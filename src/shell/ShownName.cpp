#include "shell/ShownName.h"

#include "platform/system/Text.h"

namespace thntfs {

namespace {

constexpr char16_t kControlPictures = 0x2400;
constexpr char16_t kDelete = 0x7F;
constexpr char16_t kDeletePicture = 0x2421;
constexpr char16_t kNewLinePicture = 0x2424;

bool IsLineBreak(char16_t unit) { return unit == 0x85 || unit == 0x2028 || unit == 0x2029; }

QChar Picture(QChar shown) {
    const char16_t unit = shown.unicode();
    if (unit < 0x20) {
        return static_cast<char16_t>(kControlPictures + unit);
    }
    if (IsLineBreak(unit)) {
        return kNewLinePicture;
    }
    if (unit == kDelete) {
        return kDeletePicture;
    }
    return shown.category() == QChar::Other_Control ? QChar(QChar::ReplacementCharacter) : shown;
}

} // namespace

std::uint16_t KeepName(std::u16string_view name, std::u16string& names) {
    const std::u16string_view kept = name.substr(0, kMaxShownUnits);
    names += kept;
    return static_cast<std::uint16_t>(kept.size());
}

QString ShownName(std::u16string_view name) {
    QString text = QString::fromStdString(NarrowText(name));
    for (QChar& shown : text) {
        shown = Picture(shown);
    }
    return text;
}

} // namespace thntfs
