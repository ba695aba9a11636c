#pragma once

#include "views/RowView.h"

#include <QListView>

namespace thntfs {

class FileDelegate;

/// The list without its columns: large icons, small icons, or names one below the other.
class CIconView : public CRowView<QListView> {
public:
    enum class Look { Large, Small, List };

    CIconView(RowActions& actions, QAbstractItemModel* model, QWidget* parent);

    void SetLook(Look look);

private:
    FileDelegate* delegate_;
};

} // namespace thntfs
