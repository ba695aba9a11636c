#pragma once

#include "views/RowView.h"

#include <QListView>

namespace thntfs {

class FileDelegate;

/// The list without its columns: large icons, small icons, or names one below the other.
class CIconView : public CRowView<QListView> {
public:
    enum class Look { Large, Small, List };

    CIconView(RowActions& actions, QWidget* parent);

    /// Shows the rows of another view and shares what is selected there; nothing for null. A view that isn't
    /// seen would lay out all rows at each change, as one that is.
    void Follow(const QAbstractItemView* other);

    void SetLook(Look look);

private:
    FileDelegate* delegate_;
};

} // namespace thntfs
