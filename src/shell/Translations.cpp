#include "shell/Translations.h"

#include "shell/DataFolders.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <memory>

namespace thntfs {

namespace {

QStringList OwnFolders() {
    QStringList folders = DataFolders();
    for (QString& folder : folders) {
        folder += QStringLiteral("/translations");
    }
    return folders;
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
    auto translator = std::make_unique<QTranslator>();
    for (const QLocale& language : languages) {
        for (const QString& folder : folders) {
            for (const QString& name : names) {
                if (translator->load(language, name, QStringLiteral("_"), folder)) {
                    translator->setParent(&application);
                    return QCoreApplication::installTranslator(translator.release());
                }
            }
        }
    }
    return false;
}

} // namespace

void LoadTranslations(QApplication& application, const QLocale& locale) {
    const QList<QLocale> languages = LanguagesBeforeEnglish(locale);
    const QStringList qtFolder{QLibraryInfo::path(QLibraryInfo::TranslationsPath)};
    // Qt has one file for all its parts in some languages.
    LoadFirst(application, {QStringLiteral("qtbase"), QStringLiteral("qt")}, languages, qtFolder);
    if (!LoadFirst(application, {QStringLiteral("th-ntfs")}, languages, OwnFolders())) {
        // Qt's translation alone would mirror English windows.
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }
}

} // namespace thntfs
