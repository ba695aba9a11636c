#pragma once

#include "partitions/PartitionSearch.h"

#include <QCoreApplication>
#include <QDialog>

namespace thntfs {

/// Asks for the method of a search.
class CDiskScanMode : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CDiskScanMode)

public:
    explicit CDiskScanMode(QWidget* owner);

    SearchMethod ScanMethod = SearchMethod::Quick;
};

} // namespace thntfs
