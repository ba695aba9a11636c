#include "dialogs/TipFile.h"

#include "shell/DataFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace thntfs {

namespace {

const QString kTipName = QStringLiteral("/stips.txt");
QString OnlyTip() { return QCoreApplication::translate("TipFile", "Press Ctrl + W to run wizard."); }
constexpr qint64 kMostFileBytes = qint64{256} << 10;
constexpr qsizetype kMostTipLetters = 500;

bool IsTip(const QString& line) {
    const QList<uint> letters = line.toUcs4();
    return !letters.empty() && letters.size() <= kMostTipLetters && letters.front() != ';' &&
           std::all_of(letters.begin(), letters.end(), [](uint letter) {
               return letter != QChar::ReplacementCharacter && QChar::isPrint(letter);
           });
}

// No more than what is bounded, and of nothing but an ordinary file: a pipe would hold the program.
QByteArray BytesOf(const QString& path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.read(kMostFileBytes);
}

} // namespace

QString TipFilePath() { return DataFolders().front() + kTipName; }

QString TipFileInUse() {
    const QString own = TipFilePath();
    QStringList files;
    if (ReadTips(own) == QStringList{OnlyTip()}) {
        for (const QString& folder : DataFolders()) {
            files += folder + kTipName;
        }
        files.removeAll(own);
    }
    const auto found =
        std::ranges::find_if(files, [](const QString& file) { return QFileInfo(file).isFile(); });
    return found != files.end() ? *found : own;
}

void ProvideTipFile(const QString& path) {
    const QFileInfo info(path);
    if (info.exists() && !info.isDir()) {
        return;
    }
    QDir().mkpath(info.path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        file.write(OnlyTip().toUtf8());
        file.write("\n");
    }
}

QStringList ReadTips(const QString& path) {
    QStringList tips;
    const QList<QByteArray> lines = BytesOf(path).split('\n');
    for (const QByteArray& line : lines) {
        const QString tip = QString::fromUtf8(line).simplified();
        if (IsTip(tip)) {
            tips.push_back(tip);
        }
    }
    return tips.empty() ? QStringList{OnlyTip()} : tips;
}

} // namespace thntfs
