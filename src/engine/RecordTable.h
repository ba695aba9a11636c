#pragma once

#include "engine/TableMap.h"
#include "platform/system/Bytes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace thntfs {

// The Master File Table of the volume in work, exactly: record n lies at byte n * FileRecordBytes of the
// table, across the borders of its runs. The runs come from the table's own record at VolumeParams.MftSector
// with all that its attribute list leads to, and where that record can't be had from VolumeParams.MftExtents.
// They are made out when they are first asked for, and remembered until another volume or table is taken into
// use. Beside the table stand the records that a search of the whole volume has found, wherever they lie.

/// Absolute sectors that follow each other.
struct SectorRange {
    std::uint64_t First = 0;
    std::uint64_t Count = 0;
};

/// Records of the table that follow each other: any number of them in one range of sectors, or a single one
/// whose parts, in order, lie in several.
struct TableStretch {
    std::uint64_t FirstRecord = 0;
    std::uint64_t Records = 0;
    std::vector<SectorRange> Ranges;
};

/// Records that the runs known of the table reach up to. 0 where there is no table.
std::uint64_t TableRecordCount();

/// False where there is no table, or where a piece of it could not be had.
bool TableIsWhole();

/// Hands over all records of the table whose place is known, in order. The stretch is good until the visitor
/// returns; its false ends the walk.
void VisitTableStretches(const std::function<bool(const TableStretch&)>& visit);

/// The sectors of one record, in order; empty where its place isn't known.
std::vector<SectorRange> TableRecordRanges(std::uint64_t number);

/// Sector in which a record of the table begins.
std::optional<std::uint64_t> TableRecordSector(std::uint64_t number);

/// Reads record `number` into FileRecordBytes and checks it: from the table, else, where the table doesn't
/// hold it or another record stands there, from those that were found. A record that gives itself another
/// number is another one, and so is one that doesn't pass `fits`. False, with the buffer's content undefined,
/// where none is right. Passes CUserException on.
bool ReadTableRecord(std::uint64_t number, Bytes record, const RecordTest& fits = {});

/// Takes note of a valid record that a search of the whole volume has met at an absolute sector, extension
/// records too, by the number that it gives itself. Memory is bounded: what comes behind a million places
/// that don't follow each other is left.
void NoteFoundRecord(std::uint32_t number, std::uint64_t sector);

/// Forgets them, as when such a search begins.
void ForgetFoundRecords();

} // namespace thntfs
