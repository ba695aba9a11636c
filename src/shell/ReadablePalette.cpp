#include "shell/ReadablePalette.h"

#include <QPalette>
#include <array>
#include <cstdlib>
#include <utility>

namespace thntfs {

namespace {

constexpr int kLeastDistance = 48;             // of a greyed text to its ground, in lightness
constexpr int kDarkGround = 128;               // lightness
constexpr QColor kLightBlue{0x8A, 0xB4, 0xF8}; // the toolkit's own is for light grounds

QColor Between(const QColor& one, const QColor& other) {
    return {(one.red() + other.red()) / 2, (one.green() + other.green()) / 2,
            (one.blue() + other.blue()) / 2};
}

} // namespace

QPalette ReadablePalette(QPalette palette) {
    constexpr std::array<std::pair<QPalette::ColorRole, QPalette::ColorRole>, 3> kTexts{
        {{QPalette::WindowText, QPalette::Window},
         {QPalette::Text, QPalette::Base},
         {QPalette::ButtonText, QPalette::Button}}};
    for (const auto& [text, ground] : kTexts) {
        const QColor greyed = palette.color(QPalette::Disabled, text);
        const QColor behind = palette.color(QPalette::Disabled, ground);
        if (std::abs(greyed.lightness() - behind.lightness()) < kLeastDistance) {
            palette.setColor(QPalette::Disabled, text,
                             Between(palette.color(QPalette::Active, text), behind));
        }
    }
    const QColor link = palette.color(QPalette::Link);
    if (palette.color(QPalette::Base).lightness() < kDarkGround && link.lightness() <= kDarkGround) {
        palette.setColor(QPalette::Link, kLightBlue);
    }
    return palette;
}

} // namespace thntfs
