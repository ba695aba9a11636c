#pragma once

#include "disktools/CopyJob.h"
#include "disktools/CopyMapFile.h"
#include "disktools/CopyRules.h"

#include <optional>
#include <string>

namespace thntfs {

/// The image file that SourceDisk is copied into, with its map beside it: a new one, or one that is gone on
/// with. An image that exists is never made anew.
class ImageTarget {
public:
    /// `source` is the path by which SourceDisk was opened.
    ImageTarget(std::string source, std::string image);

    /// Looks at all that may be wrong, then makes the image and its map, or opens them where `goOn` is set
    /// and the image is there. `mustExist` refuses one that isn't. After a refusal nothing has changed.
    CopyVerdict Open(bool goOn, bool mustExist);

    /// True where the image was there before.
    [[nodiscard]] bool IsOld() const { return isOld_; }
    [[nodiscard]] const std::string& MapPath() const { return mapPath_; }

    // Once Open has succeeded.

    /// What to tell where the image was begun from another path than the source's: the contents are the same,
    /// and names of devices change. Else empty.
    [[nodiscard]] std::string OriginRemark() const;

    /// The account of what is in the image already.
    [[nodiscard]] const CopyMap& Map() const { return ledger_->Map(); }

    /// The copy into the image, which Engine.TargetDisk has open: from the start of a new one, else on from
    /// where it was. Once; the account goes over to it.
    CopyJob TakeJob();

private:
    [[nodiscard]] static File& Handle();
    [[nodiscard]] bool MapIsOfNothing() const;
    CopyVerdict MakeNew();
    CopyVerdict OpenOld();
    CopyVerdict CheckOld(const SavedMap& saved);
    CopyVerdict CheckContents(const SavedMap& saved);
    [[nodiscard]] CopyVerdict Refused(CopyRefusal why, std::string detail = {}) const;
    [[nodiscard]] CopyVerdict Failed(CopyRefusal why, const std::string& path, ErrorCode code) const;
    void MakeLedger(CopyMap map);

    std::string source_;
    std::string image_;
    std::string mapPath_;
    bool isOld_;
    std::string serial_;
    std::string otherSource_;
    std::optional<CopyLedger> ledger_;
};

} // namespace thntfs
