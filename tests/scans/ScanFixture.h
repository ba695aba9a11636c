#pragma once

#include "catalogue/CatalogueFixture.h"
#include "catalogue/CatalogueReader.h"
#include "catalogue/EntryWalk.h"

namespace thntfs::test {

using Lines = std::vector<std::string>;

/// A volume that is open for a scan.
class ScanFixture : public CatalogueFixture {
protected:
    ScanFixture() {
        OpenVolume(Volume);
        Engine.ScanRunFlag = 1;
    }

    /// Runs a scan and opens the catalogue that it leaves; gives the scan's result.
    template <typename Job>
    static int RunScan(Job scan) {
        EXPECT_EQ(CreateCatalogue(), 1);
        const auto result = scan();
        CloseCatalogue();
        EXPECT_EQ(OpenCatalogue(), 1);
        return static_cast<int>(result);
    }

    /// "path number" of all entries below the top in walking order, deleted ones with a minus in front.
    static Lines Picture() {
        Lines lines;
        EntryWalk walk({});
        while (walk.Next()) {
            if (walk.Item().EntryId != 1) {
                lines.push_back((walk.Item().IsLive() ? "" : "-") + walk.Path() + " " +
                                std::to_string(walk.Item().RecordNumber));
            }
        }
        return lines;
    }

    RecordBuilder Record(std::uint32_t number, std::uint32_t parent, const char16_t* name,
                         RecordForm form = RecordForm::Newer) {
        return Volume.NewRecord(number, form).AddStandardInformation().AddFileName(NameIn(parent, name));
    }

    VolumeBuilder Volume;
};

} // namespace thntfs::test
