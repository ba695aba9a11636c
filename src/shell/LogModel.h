#pragma once

#include "scaninfo/ProcessLog.h"

#include <QAbstractTableModel>
#include <QCoreApplication>
#include <QIcon>
#include <QString>
#include <QTimer>
#include <array>

namespace thntfs {

/// The process log as a list's model. A row is in the log at once, while the list learns of the rows that
/// have come in batches, so a long log costs it no more for each row than a short one.
class LogModel : public QAbstractTableModel {
    Q_DECLARE_TR_FUNCTIONS(LogModel)

public:
    static constexpr int kOpensRole = Qt::UserRole; ///< folder that a row offers to open, empty for none

    LogModel();

    /// Adds a row; its time is the present one.
    void Add(const ProcessLogEntry& entry);
    void Clear();

    /// All rows, also those that the list hasn't learnt of yet.
    [[nodiscard]] const ProcessLog& Log() const { return log_; }

    /// The columns of a shown row with tabs between them.
    [[nodiscard]] QString RowText(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void ShowArrived();
    [[nodiscard]] QString CellText(int row, int column) const;
    [[nodiscard]] const QIcon& IconOf(int row) const;
    [[nodiscard]] QString FolderOf(int row) const;
    [[nodiscard]] bool IsLast(int row) const { return row == shownRows_ - 1; }

    ProcessLog log_;
    int shownRows_ = 0;
    QTimer batch_;
    std::array<QIcon, 3> icons_; ///< by status
};

} // namespace thntfs
