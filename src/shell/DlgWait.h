#pragma once

#include "shell/WorkTime.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QWidget>

namespace thntfs {

/// The small window that stands while the list is filled. Desktop.WaitDialog names it from its construction
/// to its destruction, which tells views and commands that the program is busy. It comes to the screen when
/// the fill takes long enough for somebody to wonder.
class CDlgWait : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(CDlgWait)

public:
    explicit CDlgWait(QWidget* owner);
    ~CDlgWait() override;

    /// To be called now and then during the fill: how far it is, in any unit; no end where that isn't known.
    void Waiting(std::size_t done, std::size_t total);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QElapsedTimer since_;
    WorkTime time_;
};

} // namespace thntfs
