#pragma once

#include <QCoreApplication>
#include <QLabel>
#include <QProgressBar>
#include <QString>

namespace thntfs {

/// A job's progress within a pane of the status bar: the pane shows a text, and the bar lies over the room
/// right of it. Destroying the bar gives the pane its idle text back.
class CProgressBar : public QProgressBar {
    Q_DECLARE_TR_FUNCTIONS(CProgressBar)

public:
    /// The bar becomes the pane's child and stands from 0 to `maximum`. It takes `percentOfPane` of the width
    /// that the text leaves.
    CProgressBar(QLabel* pane, const QString& message, int percentOfPane, int maximum);
    ~CProgressBar() override;

    /// The text left of the bar.
    void SetText(const QString& message);
    /// Shows the bar at a position of its range.
    void SetPos(int position);

    QString Label;       ///< the job's phase, which the frame puts before the percent
    int LastPercent = 0; ///< shown last

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Null while the pane is being destroyed, and the bar with it.
    [[nodiscard]] QLabel* Pane() const { return qobject_cast<QLabel*>(parent()); }
    void Place();
    [[nodiscard]] QRect FreeRoom() const;

    QString message_;
    int percentOfPane_;
};

} // namespace thntfs
