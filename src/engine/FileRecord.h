#pragma once

#include "engine/LittleEndian.h"

#include <cstdint>

namespace thntfs {

// Header of a FILE record.

inline constexpr std::uint32_t kFileMagic = 0x454C4946;  ///< "FILE"
inline constexpr std::uint32_t kIndexMagic = 0x58444E49; ///< "INDX", of an index block
inline constexpr std::uint16_t kUsaOffsetOld = 42;       ///< older form, without a record number of its own
inline constexpr std::uint16_t kUsaOffsetNew = 48;       ///< newer form

[[nodiscard]] inline std::uint16_t UsaOffset(ConstBytes record) { return U16At(record, 4); }
[[nodiscard]] inline std::uint16_t UsaCount(ConstBytes record) { return U16At(record, 6); }
[[nodiscard]] inline std::uint16_t FirstAttributeOffset(ConstBytes record) { return U16At(record, 20); }
[[nodiscard]] inline std::uint16_t RecordFlags(ConstBytes record) { return U16At(record, 22); }
[[nodiscard]] inline bool IsInUse(ConstBytes record) { return (RecordFlags(record) & 1U) != 0; }
[[nodiscard]] inline bool IsDirectory(ConstBytes record) { return (RecordFlags(record) & 2U) != 0; }
[[nodiscard]] inline std::uint32_t BytesInUse(ConstBytes record) { return U32At(record, 24); }
[[nodiscard]] inline std::uint32_t BytesAllocated(ConstBytes record) { return U32At(record, 28); }
[[nodiscard]] inline std::uint64_t BaseReference(ConstBytes record) { return U64At(record, 32); }
/// Valid only in the newer form.
[[nodiscard]] inline std::uint32_t OwnRecordNumber(ConstBytes record) { return U32At(record, 44); }

/// Decides whether a block of bytes counts as a FILE record, and undoes its update sequence protection while
/// it does so. The record is changed in place: it can be checked once only, and a rejected one may be left
/// partly fixed. `recordBytes` is the record size in bytes, `sectorBytes` the sector size that the protection
/// uses. Reports nothing. The second form gives the offset of the first attribute of a sound record that
/// isn't resident; where all are, the bytes in use.
bool CheckFileRecord(Bytes record, std::uint32_t recordBytes, std::uint16_t sectorBytes);
bool CheckFileRecord(Bytes record, std::uint32_t recordBytes, std::uint16_t sectorBytes,
                     std::uint64_t& firstNonResident);

/// The same decision for an INDX block. Its size enters only through VolumeParams.SectorsPerIndexBlock.
bool CheckIndexBlock(Bytes block, std::uint16_t sectorBytes);

/// True for the record that describes the Master File Table: it passes CheckFileRecord with the medium's
/// sector size, the four times of its standard information are equal (nothing has touched it since the volume
/// was formatted) and its name is "$MFT". The buffer is fixed up afterwards.
bool IsMftRecord(Bytes record, std::uint32_t recordBytes);

/// The same for the record of the table's mirror, "$MFTMirr".
bool IsMftMirrRecord(Bytes record, std::uint32_t recordBytes);

/// Whether a checked record holds an attribute list.
bool HasAttributeList(ConstBytes record);

} // namespace thntfs
