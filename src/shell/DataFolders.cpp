#include "shell/DataFolders.h"

#include <QCoreApplication>
#include <QStandardPaths>

namespace thntfs {

QStringList DataFolders() {
    const QString name = QStringLiteral("/th-ntfs");
    const QString program = QCoreApplication::applicationDirPath();
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    folders.insert(1, program + QStringLiteral("/data"));
    folders.insert(2, program + QStringLiteral("/../share"));
    for (QString& folder : folders) {
        folder += name;
    }
    return folders;
}

} // namespace thntfs
