#pragma once

#include "views/RowView.h"

#include <QTreeView>
#include <vector>

namespace thntfs {

/// The list with all its columns. They share the width of the view, as the user has last divided it.
class CDetailsView : public CRowView<QTreeView> {
public:
    CDetailsView(RowActions& actions, QAbstractItemModel* model, QWidget* parent);

    /// Shows the column of folders, or takes it away.
    void ShowFolders(bool show);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void FitColumns();
    void RememberShares();
    [[nodiscard]] std::vector<int> LeastWidths() const;
    [[nodiscard]] std::vector<double> WishedRoom(const std::vector<int>& leastWidths) const;

    std::vector<double> shares_; ///< of each column in the width of the view
    bool fitting_ = false;
    bool dividedByUser_ = false;
};

} // namespace thntfs
