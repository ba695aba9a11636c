#include "shell/Translations.h"

#include <QApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <gtest/gtest.h>

namespace thntfs::test {
namespace {

TEST(Translations, QtsOwnTextsComeInTheLanguageOfTheUser) {
    if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) +
                       QStringLiteral("/qtbase_de.qm"))) {
        GTEST_SKIP() << "needs qt6-translations-l10n";
    }
    for (const auto& [language, copy] :
         {std::pair("de_DE", "&Kopieren"), {"en_GB", "&Copy"}, {"ar_EG", "ا&نسخ"}, {"sv_SE", "&Kopiera"}}) {
        LoadTranslations(*qApp, QLocale(QLatin1String(language)));
        EXPECT_EQ(QCoreApplication::translate("QLineEdit", "&Copy"), QString::fromUtf8(copy));
        EXPECT_EQ(QApplication::layoutDirection(), Qt::LeftToRight) << "as our windows stay English";
        qDeleteAll(qApp->findChildren<QTranslator*>());
    }
    QApplication::setLayoutDirection(Qt::LayoutDirectionAuto);
}

} // namespace
} // namespace thntfs::test
