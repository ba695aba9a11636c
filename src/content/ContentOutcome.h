#pragma once

#include "catalogue/CatalogueReader.h"
#include "content/ExactDoubts.h"
#include "content/MissingData.h"
#include "platform/system/ErrorCodes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

class File;

/// What ended the way of a file's content.
enum class ContentEnd {
    Reached,       ///< nothing did: all that its record tells of was put out
    RecordDamaged, ///< one of its file records fails its check
    Stopped,       ///< ScanRunFlag was cleared
    WriteFailed,   ///< the output took no more; the user has seen a box
    MediumFailed   ///< the medium failed for good; the user has seen a box
};

/// How a file's content came out. The one judgement on what is whole and what is damaged.
struct ContentOutcome {
    ContentEnd End = ContentEnd::Reached;
    ErrorCode WriteError = kErrorNone; ///< of the write that failed
    std::uint64_t Size = 0;            ///< bytes that the file should have
    std::uint64_t Written = 0;         ///< bytes put out
    MissingData Missing;               ///< of these
    Doubts Doubtful;                   ///< of exact content: why its bytes can't be vouched for

    /// Every byte that was asked for, none besides, and no doubt about them.
    [[nodiscard]] bool Whole() const;

    /// Worth keeping: whole, or damaged but not without content. What a stop or a failure cut off isn't.
    [[nodiscard]] bool Kept() const;
};

/// What is wrong with content that isn't whole: one phrase each, without a capital and a full stop.
std::vector<std::string> DamageReasons(const ContentOutcome& outcome);

/// Writes an entry's content to an output file by ReadEntryContent and judges what came of it. Throws
/// nothing: what failed stands in the outcome.
ContentOutcome TakeContent(const CatalogueItem& entry, File& output);

/// The same by ExactFile: the bytes as the volume's own driver gives them, holes as zeros. `stream` names
/// another stream than the file's content. The size is the stream's.
ContentOutcome TakeExactContent(const CatalogueItem& entry, File& output, std::u16string_view stream = {});

} // namespace thntfs
