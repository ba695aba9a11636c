// The record check and the decoding behind it, with a medium behind attribute lists; then the record's
// content.

#include "FuzzSupport.h"
#include "content/EntryContent.h"
#include "engine/DecodeRecord.h"
#include "engine/FileRecord.h"
#include "support/MemoryFile.h"

using namespace thntfs;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ConstBytes input(data, size);
    fuzz::OpenPlainVolume(input);
    const std::size_t recordBytes = size >= 4096 ? 1024 : std::min<std::size_t>(size, 1024);
    std::vector<std::uint8_t> record(input.begin(), input.begin() + static_cast<std::ptrdiff_t>(recordBytes));
    std::vector<std::uint8_t> copy = record;
    IsMftRecord(copy, static_cast<std::uint32_t>(copy.size()));
    if (CheckFileRecord(record, static_cast<std::uint32_t>(record.size()), 512)) {
        DecodedEntry entry;
        DecodeFileRecord(record, entry);
        HasAttributeList(record);
        std::vector<AttributeListNode> nodes;
        CatalogueItem item; // of the same record, where it lies
        item.Size = 1U << 20U;
        test::MemoryFile sink;
        MissingData missing;
        try {
            ReadAttributeList(record, nodes);
            ReadEntryContent(item, sink, missing);
        } catch (const CUserException&) {
        }
    }
    return 0;
}
