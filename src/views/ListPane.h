#pragma once

#include "views/PathLine.h"

#include <QCoreApplication>
#include <QWidget>

namespace thntfs {

class CFilterBar;
class CTHNTFSListView;
class CTHNTFSTreeView;

/// The list with what stands above it: the line that tells where one is, and the filter.
class CListPane : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(CListPane)

public:
    /// The tree stands beside it and is the caller's.
    CListPane(QWidget* parent, CTHNTFSTreeView& tree);

    [[nodiscard]] CTHNTFSListView* List() const { return list_; }
    [[nodiscard]] CPathLine& Path() const { return *path_; }
    [[nodiscard]] CFilterBar& Filter() const { return *filter_; }

    /// Names the volume that tree and list show from now on: the engine's volume in work.
    void TakeVolume();

private:
    void ShowState();
    void ShowPath();

    CTHNTFSTreeView& tree_;
    CPathLine* path_;
    CFilterBar* filter_;
    CTHNTFSListView* list_;
    PathPart medium_;
    PathPart volume_;
};

} // namespace thntfs
