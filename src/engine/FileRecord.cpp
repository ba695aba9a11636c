#include "engine/FileRecord.h"

#include "engine/Attribute.h"
#include "engine/EngineState.h"

#include <algorithm>
#include <string_view>

namespace thntfs {

namespace {

constexpr std::uint16_t kCommonStride = 512;

// Where the first attribute must stand, from the place and size of the update sequence array.
std::uint32_t ExpectedFirstAttribute(std::uint16_t usaOffset, std::uint16_t usaCount) {
    std::uint32_t arrayBytes = 2U * usaCount;
    if (arrayBytes % 8 != 0) {
        arrayBytes = (arrayBytes + 7) / 8 * 8;
        if (usaOffset == kUsaOffsetOld) {
            arrayBytes -= 2;
        }
    }
    return usaOffset + arrayBytes;
}

// Puts back the last word of each sector that ends within `limit` bytes; 0 where one doesn't hold the check
// word.
bool UndoProtection(Bytes bytes, std::uint64_t limit, std::uint16_t sectorBytes) {
    const std::uint16_t usaOffset = UsaOffset(bytes);
    const std::uint16_t checkWord = U16At(bytes, usaOffset);
    std::uint64_t saved = usaOffset + 2U;
    for (std::uint64_t end = sectorBytes; end <= limit && end <= bytes.size();
         end += sectorBytes, saved += 2) {
        if (U16At(bytes, end - 2) != checkWord) {
            return false;
        }
        PutNumber(bytes, end - 2, U16At(bytes, saved));
    }
    return true;
}

// Bytes between two protected words. Drivers protect every 512 bytes on disks with larger sectors too; the
// count of the update sequence array tells. 0 where the count fits neither.
std::uint16_t ProtectionStride(std::uint16_t usaCount, std::uint32_t blockBytes, std::uint16_t sectorBytes) {
    const auto strides = static_cast<std::uint16_t>(usaCount - 1);
    if (strides == static_cast<std::uint16_t>(blockBytes / sectorBytes)) {
        return sectorBytes;
    }
    return sectorBytes > kCommonStride && strides == static_cast<std::uint16_t>(blockBytes / kCommonStride)
               ? kCommonStride
               : 0;
}

bool HeaderIsPlausible(ConstBytes record, std::uint32_t recordBytes) {
    if (U32At(record, 0) != kFileMagic) {
        return false;
    }
    const std::uint16_t usaOffset = UsaOffset(record);
    if (usaOffset != kUsaOffsetOld && usaOffset != kUsaOffsetNew) {
        return false;
    }
    const std::uint16_t first = FirstAttributeOffset(record);
    if (first % 8 != 0 || first != ExpectedFirstAttribute(usaOffset, UsaCount(record))) {
        return false;
    }
    const std::uint32_t used = BytesInUse(record);
    const std::uint32_t allocated = BytesAllocated(record);
    return used <= allocated && allocated == recordBytes && used % 8 == 0 && allocated % 8 == 0;
}

bool FormIsPlausible(const Attribute& attribute) {
    const std::uint32_t length = attribute.Length();
    if (attribute.NonResident() == 0) {
        return length >= std::uint64_t{attribute.ValueOffset()} + attribute.ValueLength();
    }
    return attribute.NonResident() == 1 && length >= attribute.RunListOffset();
}

bool AttributeIsPlausible(const Attribute& attribute) {
    const std::uint32_t length = attribute.Length();
    if (!IsValidType(attribute.Type()) || length == 0 || length % 8 != 0) {
        return false;
    }
    if (attribute.Type() == kTypeStandardInformation && attribute.NonResident() != 0) {
        return false;
    }
    return FormIsPlausible(attribute);
}

// A record must hold at least one attribute in front of the place where the walk ended.
bool AttributesArePlausible(ConstBytes record, std::uint64_t& firstNonResident) {
    const std::uint64_t first = FirstAttributeOffset(record);
    const std::uint64_t used = BytesInUse(record);
    if (first >= used) {
        return false;
    }
    std::uint64_t last = first;
    firstNonResident = used;
    for (std::uint64_t next = first; next < used;) {
        last = next;
        const Attribute attribute(record, last);
        if (attribute.Type() == kTypeEnd) {
            break;
        }
        if (!AttributeIsPlausible(attribute)) {
            return false;
        }
        if (attribute.NonResident() != 0) {
            firstNonResident = std::min(firstNonResident, last);
        }
        next = last + attribute.Length();
    }
    return last != first;
}

bool TimesAreEqual(const Attribute& standardInformation, ConstBytes record) {
    const std::uint64_t value = standardInformation.ValueStart();
    const std::uint64_t created = U64At(record, value);
    return U64At(record, value + 8) == created && U64At(record, value + 16) == created &&
           U64At(record, value + 24) == created;
}

bool HasName(const Attribute& fileName, ConstBytes record, std::u16string_view name) {
    const std::uint64_t value = fileName.ValueStart();
    const std::size_t units = U8At(record, value + 64);
    return units <= name.size() && UnitsAt(record, value + 66, units) == name;
}

struct SystemRecord {
    std::u16string_view Name;
    bool EndsAboveData; ///< a type of 0 or above 0x80 ends the walk
};

bool IsSystemRecord(Bytes record, std::uint32_t recordBytes, const SystemRecord& wanted) {
    if (!CheckFileRecord(record, recordBytes, Engine.SourceDisk.BytesPerSector)) {
        return false;
    }
    bool result = false;
    // One attribute that starts right behind the used bytes is still looked at.
    bool within = true;
    for (AttributeWalk walk(record); within; walk.Next()) {
        within = walk.Valid();
        const Attribute attribute = walk.Current();
        const std::uint32_t type = attribute.Type();
        if (type == kTypeEnd || (wanted.EndsAboveData && (type == 0 || type > kTypeData))) {
            break;
        }
        if (type == kTypeStandardInformation && !TimesAreEqual(attribute, record)) {
            break;
        }
        if (type == kTypeFileName) {
            if (!HasName(attribute, record, wanted.Name)) {
                break;
            }
            result = true;
        }
    }
    return result;
}

} // namespace

bool CheckFileRecord(Bytes record, std::uint32_t recordBytes, std::uint16_t sectorBytes) {
    std::uint64_t firstNonResident = 0;
    return CheckFileRecord(record, recordBytes, sectorBytes, firstNonResident);
}

bool CheckFileRecord(Bytes record, std::uint32_t recordBytes, std::uint16_t sectorBytes,
                     std::uint64_t& firstNonResident) {
    if (sectorBytes < 2 || !HeaderIsPlausible(record, recordBytes)) {
        return false;
    }
    const std::uint16_t stride = ProtectionStride(UsaCount(record), recordBytes, sectorBytes);
    return stride != 0 && UndoProtection(record, BytesInUse(record), stride) &&
           AttributesArePlausible(record, firstNonResident);
}

bool CheckIndexBlock(Bytes block, std::uint16_t sectorBytes) {
    if (sectorBytes < 2 || U32At(block, 0) != kIndexMagic || UsaOffset(block) % 8 != 0) {
        return false;
    }
    const std::uint32_t blockBytes = std::uint32_t{Engine.VolumeParams.SectorsPerIndexBlock} * sectorBytes;
    const std::uint16_t stride = ProtectionStride(UsaCount(block), blockBytes, sectorBytes);
    if (stride == 0) {
        return false;
    }
    const std::uint32_t firstEntry = U32At(block, 24);
    const std::uint32_t used = U32At(block, 28);
    const std::uint32_t allocated = U32At(block, 32);
    if (firstEntry % 8 != 0 || used > allocated || used % 8 != 0 || allocated % 8 != 0) {
        return false;
    }
    return UndoProtection(block, std::uint64_t{used} + 24, stride);
}

bool IsMftRecord(Bytes record, std::uint32_t recordBytes) {
    return IsSystemRecord(record, recordBytes, {u"$MFT", true});
}

bool IsMftMirrRecord(Bytes record, std::uint32_t recordBytes) {
    return IsSystemRecord(record, recordBytes, {u"$MFTMirr", false});
}

bool HasAttributeList(ConstBytes record) {
    for (AttributeWalk walk(record); walk.Valid(); walk.Next()) {
        const std::uint32_t type = walk.Current().Type();
        if (!IsValidType(type) || type > kTypeAttributeList) {
            return false;
        }
        if (type == kTypeAttributeList) {
            return true;
        }
    }
    return false;
}

} // namespace thntfs
