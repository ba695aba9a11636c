#pragma once

#include <cstdint>

namespace thntfs {

/// What a scan has read to follow attribute lists. A list that asks for more than any driver writes is
/// damage, and so are lists that share their records: together they could hold a scan up for hours.
struct ListReads {
    bool InScan = false;        ///< clearing ScanRunFlag ends the walk along a list
    bool Stopped = false;       ///< it did so: the record in hand could not be decoded
    bool Ended = false;         ///< no more is read for the record in hand
    bool Unread = false;        ///< the list of the record in hand lies in unreadable sectors
    std::uint32_t OfRecord = 0; ///< reads for the record in hand
    std::uint64_t OfScan = 0;   ///< reads since the scan began

    void BeginRecord() {
        Ended = false;
        Unread = false;
        OfRecord = 0;
    }
};

} // namespace thntfs
