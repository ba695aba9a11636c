#include "frame/Themes.h"

#include "frame/CommandIds.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

namespace thntfs {

// A theme is one of the toolkit's styles; the start-up theme is the one that suits the user's desktop.
void UseTheme(std::uint8_t themeIndex) {
    static const QString native = QApplication::style()->objectName();
    switch (kCmdThemeOffice2000 + themeIndex) {
    case kCmdThemeOffice2000:
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Windows")));
        break;
    case kCmdThemeOfficeXp:
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        break;
    default:
        if (QApplication::style()->objectName() != native) {
            QApplication::setStyle(QStyleFactory::create(native));
        }
        break;
    }
}

} // namespace thntfs
