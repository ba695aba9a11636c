#include "shell/LogModel.h"

#include "shell/Icons.h"
#include "shell/TipText.h"

#include <QBrush>
#include <QColor>
#include <QFont>

namespace thntfs {

namespace {

constexpr int kColumns = 3;
constexpr int kBatchMilliseconds = 30;
constexpr QRgb kLastRowColour = qRgb(255, 159, 89);

/// A text as it stands on one row: what would break the line or not show at all becomes a blank.
QString OnOneRow(const std::string& text) {
    QString row = QString::fromStdString(text);
    for (QChar& c : row) {
        const QChar::Category category = c.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph) {
            c = QLatin1Char(' ');
        }
    }
    return row;
}

// As links are.
QFont Underlined() {
    QFont font;
    font.setUnderline(true);
    return font;
}

} // namespace

LogModel::LogModel()
    : icons_{LoadIcon("log-progress"), LoadIcon("log-failed"), LoadIcon("log-done")} {
    batch_.setSingleShot(true);
    batch_.setInterval(kBatchMilliseconds);
    connect(&batch_, &QTimer::timeout, this, [this] { ShowArrived(); });
}

void LogModel::Add(const ProcessLogEntry& entry) {
    log_.Add(entry);
    if (!batch_.isActive()) {
        batch_.start();
    }
}

void LogModel::Clear() {
    batch_.stop();
    beginResetModel();
    log_.Clear();
    shownRows_ = 0;
    endResetModel();
}

void LogModel::ShowArrived() {
    const int markedRow = shownRows_ - 1;
    const int arrived = static_cast<int>(log_.Rows().size());
    beginInsertRows({}, shownRows_, arrived - 1);
    shownRows_ = arrived;
    endInsertRows();
    if (markedRow >= 0) {
        Q_EMIT dataChanged(index(markedRow, 0), index(markedRow, kColumns - 1),
                           {Qt::BackgroundRole, Qt::ForegroundRole});
    }
}

QString LogModel::RowText(int row) const {
    return CellText(row, 0) + QLatin1Char('\t') + CellText(row, 1) + QLatin1Char('\t') + CellText(row, 2);
}

int LogModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : shownRows_; }

int LogModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : kColumns; }

QVariant LogModel::data(const QModelIndex& index, int role) const {
    switch (role) {
    case Qt::DisplayRole:
        return CellText(index.row(), index.column());
    case Qt::ToolTipRole:
        return TipText(CellText(index.row(), index.column()));
    case Qt::DecorationRole:
        return index.column() == 0 ? QVariant(IconOf(index.row())) : QVariant();
    case Qt::BackgroundRole:
        return IsLast(index.row()) ? QVariant(QBrush(QColor(kLastRowColour))) : QVariant();
    case Qt::ForegroundRole: // the mark is bright, whatever the palette
        return IsLast(index.row()) ? QVariant(QBrush(Qt::black)) : QVariant();
    case Qt::FontRole:
        return FolderOf(index.row()).isEmpty() ? QVariant() : QVariant(Underlined());
    case kOpensRole:
        return FolderOf(index.row());
    default:
        return {};
    }
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case 0:
        return tr("Process Name");
    case 1:
        return tr("Description");
    default:
        return tr("Log Time");
    }
}

QString LogModel::CellText(int row, int column) const {
    const ProcessLogEntry& entry = log_.Rows()[static_cast<std::size_t>(row)];
    switch (column) {
    case 0:
        return OnOneRow(entry.Name);
    case 1:
        return OnOneRow(entry.Description);
    default:
        return OnOneRow(entry.Time);
    }
}

QString LogModel::FolderOf(int row) const {
    return QString::fromStdString(log_.Rows()[static_cast<std::size_t>(row)].Opens);
}

const QIcon& LogModel::IconOf(int row) const {
    const std::uint8_t status = log_.Rows()[static_cast<std::size_t>(row)].Status;
    return icons_[status < icons_.size() ? status : kLogInProgress];
}

} // namespace thntfs
