#pragma once

#include "partitions/PartitionSearch.h"

#include <QDialog>

namespace thntfs {

/// Asks for the method of a search.
class CDiskScanMode : public QDialog {
public:
    explicit CDiskScanMode(QWidget* owner);

    SearchMethod ScanMethod = SearchMethod::Quick;
};

} // namespace thntfs
