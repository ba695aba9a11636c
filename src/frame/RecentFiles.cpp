#include "frame/RecentFiles.h"

#include "shell/Settings.h"

#include <QDir>
#include <QFileInfo>

namespace thntfs {

namespace {

QString RecentKey() { return QStringLiteral("Recent/Files"); }

bool IsForTheMoment(const QString& path) {
    const QString suffix = QFileInfo(path).suffix();
    return (suffix == QLatin1String("tht") || suffix == QLatin1String("thd")) &&
           path.startsWith(QDir::tempPath() + QLatin1Char('/'));
}

} // namespace

RecentFiles::RecentFiles()
    : paths_(OpenSettings().value(RecentKey()).toStringList().mid(0, kMost)) {}

void RecentFiles::Note(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (path.isEmpty() || IsForTheMoment(absolute)) {
        return;
    }
    paths_.removeAll(absolute);
    paths_.prepend(absolute);
    paths_ = paths_.mid(0, kMost);
    Keep();
}

void RecentFiles::Remove(const QString& path) {
    paths_.removeAll(path);
    Keep();
}

void RecentFiles::Clear() {
    paths_.clear();
    Keep();
}

void RecentFiles::Keep() const { OpenSettings().setValue(RecentKey(), paths_); }

} // namespace thntfs
