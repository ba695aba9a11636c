#pragma once

#include "catalogue/CatalogueReader.h"
#include "content/ExactLayout.h"
#include "engine/AttributePieces.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace thntfs {

/// One of a file's names, each of which stands in a folder.
struct ExactName {
    std::uint64_t Parent = 0; ///< file reference of the folder: NumberOf and SequenceOf
    std::u16string Name;
};

/// File times: 100 ns units since 1601, 0 where the record tells of none.
struct ExactTimes {
    std::uint64_t Created = 0;
    std::uint64_t Modified = 0;
    std::uint64_t Changed = 0;
    std::uint64_t Accessed = 0;
};

struct ExactStreamInfo {
    std::u16string Name; ///< empty for the file's own content
    std::uint64_t Size = 0;
};

/// Where the bytes of a stream lie.
struct ExactPlace {
    bool InRecord = false;          ///< then there are no runs
    std::uint64_t Runs = 0;         ///< without holes
    std::uint64_t FirstCluster = 0; ///< of the volume; 0 without runs
};

/// A reparse tag: compressed by the system, its content in the stream "WofCompressedData".
inline constexpr std::uint32_t kReparseSystemCompressed = 0x80000017;

/// A file or folder, read from its records: all that they tell of it, exactly. Records are read when they are
/// first needed, and once; of a file without an attribute list that is one. Outlived by the streams that it
/// opens. Reading follows the rule of ReadSectors; CUserException is passed on.
class ExactFile {
public:
    /// Reads and checks the entry's record. False where it is damaged or another's.
    bool Open(const CatalogueItem& item);

    /// From now on no further records are read once this says no: those then count as missing.
    void ReadWhile(std::function<bool()> mayGoOn) { mayGoOn_ = std::move(mayGoOn); }

    /// The stream of a name; the empty name is the file's own content. Null where there is none.
    [[nodiscard]] std::unique_ptr<ExactStream> OpenStream(std::u16string_view name = {});

    /// All streams but the system's own: the unnamed one, if there is one, first.
    [[nodiscard]] std::vector<ExactStreamInfo> Streams();

    /// Where its own content lies; nothing where there is none.
    [[nodiscard]] std::optional<ExactPlace> Place();

    /// The names, without those that are for DOS alone.
    [[nodiscard]] std::vector<ExactName> Names();

    [[nodiscard]] ExactTimes Times() const;
    [[nodiscard]] std::uint32_t AttributeBits() const; ///< as in the standard information
    [[nodiscard]] std::uint32_t ReparseTag();          ///< 0 for none
    [[nodiscard]] bool IsFolder() const;

private:
    /// A record that the attribute list leads to.
    struct Extension {
        std::vector<std::uint8_t> Record; ///< empty where it can't be had
        bool Foreign = false;
    };

    void ReadList();
    ConstBytes RecordOf(std::uint64_t reference);
    void LoadExtension(std::uint64_t reference, Extension& extension);
    [[nodiscard]] bool IsOwnExtension(ConstBytes record, std::uint64_t reference) const;
    AttributePieceList FindPieces(std::uint32_t type, std::u16string_view name, Doubts& doubts);
    void FindInOwnRecord(std::uint32_t type, std::u16string_view name, AttributePieceList& pieces) const;
    void FindListedPieces(std::uint32_t type, std::u16string_view name, AttributePieceList& pieces,
                          Doubts& doubts);
    std::vector<std::u16string> StreamNames() const;
    std::optional<StreamLayout> LayoutOf(std::u16string_view name);
    ConstBytes ReparsePoint();
    std::unique_ptr<ExactStream> OpenSystemCompressed(std::uint64_t size);
    void DoubtPointer(StreamLayout& layout);

    std::function<bool()> mayGoOn_; ///< empty for no limit
    CatalogueItem item_;
    std::vector<std::uint8_t> record_;
    std::vector<ListedPiece> list_;
    bool hasList_ = false;
    bool listWhole_ = true;
    std::map<std::uint64_t, Extension> extensions_; ///< by reference
    unsigned unfit_ = 0;                            ///< of these, those that can't be had
};

} // namespace thntfs
