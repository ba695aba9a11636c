#pragma once

#include "shell/MessageTarget.h"

#include <QCoreApplication>
#include <QDialog>
#include <cstdint>

namespace thntfs {

class CPropertiesTabCtrl;

/// The properties of one entry of the catalogue. It closes once nothing is being read for it any more.
class CPropertiesSheet : public QDialog, public MessageTarget {
    Q_DECLARE_TR_FUNCTIONS(CPropertiesSheet)

public:
    CPropertiesSheet(QWidget* parent, std::uint32_t entryId);

    std::intptr_t OnMessage(std::uint32_t message, std::uintptr_t wParam, std::uintptr_t lParam) override;

    void done(int result) override;

private:
    CPropertiesTabCtrl* tab_ = nullptr; ///< none where the entry can't be loaded
};

} // namespace thntfs
