#include "shell/Translations.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QTranslator>

namespace thntfs {

namespace {

QStringList OwnFolders() {
    return {QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                QStringLiteral("/th-ntfs/translations"),
            QCoreApplication::applicationDirPath() + QStringLiteral("/../share/th-ntfs/translations")};
}

// What stands behind English in the user's list isn't wanted: the program's own texts are English.
QList<QLocale> LanguagesBeforeEnglish(const QLocale& locale) {
    QList<QLocale> languages;
    const QStringList names = locale.uiLanguages();
    for (const QString& name : names) {
        const QLocale language(name);
        if (language.language() == QLocale::English || language.language() == QLocale::C) {
            break;
        }
        languages += language;
    }
    return languages;
}

bool LoadFirst(QApplication& application, const QStringList& names, const QList<QLocale>& languages,
               const QStringList& folders) {
    auto* translator = new QTranslator(&application);
    for (const QLocale& language : languages) {
        for (const QString& folder : folders) {
            for (const QString& name : names) {
                if (translator->load(language, name, QStringLiteral("_"), folder)) {
                    return QCoreApplication::installTranslator(translator);
                }
            }
        }
    }
    delete translator;
    return false;
}

} // namespace

void LoadTranslations(QApplication& application, const QLocale& locale) {
    const QList<QLocale> languages = LanguagesBeforeEnglish(locale);
    const QStringList qtFolder{QLibraryInfo::path(QLibraryInfo::TranslationsPath)};
    LoadFirst(application, {QStringLiteral("qtbase"), QStringLiteral("qt")}, languages,
              qtFolder); // some have one file for all
    if (!LoadFirst(application, {QStringLiteral("th-ntfs")}, languages, OwnFolders())) {
        QApplication::setLayoutDirection(
            Qt::LeftToRight); // Qt's translation alone would mirror English windows
    }
}

} // namespace thntfs
