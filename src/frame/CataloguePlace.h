#pragma once

#include "platform/files/WorkFolder.h"

#include <QCoreApplication>
#include <string>

namespace thntfs {

/// Where the catalogue of the desktop program lies.
class CataloguePlace {
    Q_DECLARE_TR_FUNCTIONS(CataloguePlace)

public:
    /// Sees to it that the catalogue is kept away from a medium, before a scan of it or a load writes its
    /// files: takes the user's lasting folder as CatalogueFolder, unless one that was given otherwise will
    /// do. Where there is no place a box says so, and the catalogue's files then can't be made.
    void KeepAwayFrom(const std::string& medium);

private:
    WorkFolder folder_;
};

} // namespace thntfs
