#pragma once

#include "shell/LogModel.h"
#include "shell/MessageTarget.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTreeView>

namespace thntfs {

/// The list of the process log. Takes WM_LOG_ADD; the last row is marked and scrolled into view. A row that
/// offers a folder opens it by a double-click or Enter.
class CProcessLogList : public QTreeView, public MessageTarget {
    Q_DECLARE_TR_FUNCTIONS(CProcessLogList)

public:
    explicit CProcessLogList(QWidget* parent = nullptr);

    [[nodiscard]] bool IsEmpty() const { return Log().Rows().empty(); }
    void Clear() { model_.Clear(); }
    [[nodiscard]] const ProcessLog& Log() const { return model_.Log(); }

    /// Where Tab moves the focus. The caller keeps the widget, which may go away.
    void SetTabTarget(QWidget* target) { tabTarget_ = target; }

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void SetUpHeader();
    void FitColumns();
    void CopySelection() const;
    void OpenFolderOf(const QModelIndex& row) const;

    LogModel model_;
    QPointer<QWidget> tabTarget_;
    bool fitting_ = false;
    bool sizedByUser_ = false;
};

} // namespace thntfs
