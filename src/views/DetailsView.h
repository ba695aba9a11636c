#pragma once

#include "views/RowView.h"

#include <QTreeView>
#include <vector>

namespace thntfs {

/// The list with all its columns. They share the width of the view, as the user has last divided it.
class CDetailsView : public CRowView<QTreeView> {
public:
    CDetailsView(RowActions& actions, QAbstractItemModel* model, QWidget* parent);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void FitColumns();
    void RememberShares();
    [[nodiscard]] std::vector<double> RoomBeyondTitles() const;

    std::vector<double> shares_; ///< of each column in the width of the view
    bool fitting_ = false;
};

} // namespace thntfs
