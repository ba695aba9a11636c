#pragma once

#include <QCoreApplication>
#include <QDialog>
#include <QString>
#include <QStringList>

namespace thntfs {

inline constexpr qsizetype kMaxTypeLength = 219;

/// Why a file type can't go on the list of excluded ones, empty where it can: it is empty or there already,
/// whatever its case, or too long, or no suffix.
QString FaultOfType(const QString& type, const QStringList& types);

/// Shows the list of excluded file types.
class CExcludedTypes : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CExcludedTypes)

public:
    CExcludedTypes(QWidget* owner, const QStringList& types);
};

} // namespace thntfs
