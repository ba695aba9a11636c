#pragma once

#include "views/RowFilter.h"

#include <QCoreApplication>
#include <QWidget>
#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;

namespace thntfs {

/// The row from which the user narrows a list.
class CFilterBar : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(CFilterBar)

public:
    /// Calls `narrow` at each change that the user makes.
    CFilterBar(QWidget* parent, std::function<void(const RowFilter&)> narrow);

    /// Shows the filter in use and how much it lets through, of how many rows.
    void Show(const RowFilter& filter, int shown, int all);

    /// Moves the focus to the part of a name.
    void TakeFocus();
    [[nodiscard]] QWidget* LastTabStop() const;

    /// Where the focus goes from the part of a name, to what it has left; the caller keeps it.
    void SetList(QWidget* list) { list_ = list; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] RowFilter Chosen() const;
    void Changed() const;

    std::function<void(const RowFilter&)> narrow_;
    QComboBox* reach_;
    QLineEdit* namePart_;
    QLabel* count_;
    QWidget* list_ = nullptr;
};

} // namespace thntfs
