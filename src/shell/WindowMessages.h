#pragma once

#include <cstdint>

namespace thntfs {

// The numbers of the program's own window messages. They restart for each receiver, so a number may mean two
// things at two windows. A message that carries a pointer is always sent, never posted.

inline constexpr std::uint32_t WM_APP = 0x8000;

// To the main frame.
inline constexpr std::uint32_t WM_SHOW_TIPS = WM_APP + 1;
inline constexpr std::uint32_t WM_LOG_EVENT = WM_APP + 2;     ///< wParam: const ProcessLogEntry*
inline constexpr std::uint32_t WM_COPY_POSITION = WM_APP + 3; ///< sectors done, total sectors; low 32 bits
inline constexpr std::uint32_t WM_COPY_EVENT = WM_APP + 4;    ///< kWork…, kEvent…
inline constexpr std::uint32_t WM_START_BASIC_SCAN = WM_APP + 5;
inline constexpr std::uint32_t WM_JOB_FINISHED = WM_APP + 6;     ///< wParam: kFinished…
inline constexpr std::uint32_t WM_JOB_PROGRESS = WM_APP + 7;     ///< ProgressDone of ProgressTotal has moved
inline constexpr std::uint32_t WM_PROGRESS_CAPTION = WM_APP + 8; ///< wParam: const char*, the job's phase
inline constexpr std::uint32_t WM_UPDATE_TOTALS = WM_APP + 9;    ///< (1, 0) totals, (2, 1) marks
inline constexpr std::uint32_t WM_SAVE_REQUEST = WM_APP + 10;    ///< 0 from the list, EntryId from the tree
inline constexpr std::uint32_t WM_SHOW_PROPERTIES = WM_APP + 11; ///< wParam: EntryId
inline constexpr std::uint32_t WM_FIND_FROM_VIEW = WM_APP + 12;  ///< wParam: EntryId
inline constexpr std::uint32_t WM_SHOW_PREVIEW = WM_APP + 13;    ///< wParam: EntryId
inline constexpr std::uint32_t WM_CLEAR_VIEWS = WM_APP + 14;     ///< empties tree and list
inline constexpr std::uint32_t WM_JOB_FAILED = WM_APP + 15;      ///< the worker could not begin or go on
inline constexpr std::uint32_t WM_GIVE_UP_SCAN = WM_APP + 16; ///< as WM_CLEAR_VIEWS; 1: the user keeps them

// To the process log.
inline constexpr std::uint32_t WM_LOG_ADD = WM_APP + 17; ///< wParam: const ProcessLogEntry*

// To the dialog that runs a partition search.
inline constexpr std::uint32_t WM_START_PARTITION_SEARCH = WM_APP + 50;
inline constexpr std::uint32_t WM_SEARCH_POSITION =
    WM_APP + 51; ///< sector reached, sectors in all; low 32 bits
inline constexpr std::uint32_t WM_PARTITION_FOUND = WM_APP + 52; ///< low 32 bits of the start sector
inline constexpr std::uint32_t WM_SEARCH_FINISHED = WM_APP + 53; ///< 1 finished, 0 aborted

// To the folder tree.
inline constexpr std::uint32_t WM_TREE_SELECT_CHILD = WM_APP + 53;  ///< wParam: EntryId
inline constexpr std::uint32_t WM_TREE_SELECT_FOLDER = WM_APP + 55; ///< wParam: EntryId
inline constexpr std::uint32_t WM_TREE_FILLED = WM_APP + 56;        ///< wParam: FolderNodes*, moved from

// To the file list.
inline constexpr std::uint32_t WM_LIST_SHOW_FOLDER = WM_APP + 529; ///< wParam: EntryId of a folder

// Works and events of WM_COPY_EVENT.
inline constexpr std::uintptr_t kWorkClone = 0;
inline constexpr std::uintptr_t kWorkImage = 1;
inline constexpr std::uintptr_t kWorkScan = 2;
inline constexpr std::uintptr_t kEventCompleted = 1;
inline constexpr std::uintptr_t kEventAborted = 2;
inline constexpr std::uintptr_t kEventPaused = 3;
inline constexpr std::uintptr_t kEventResumed = 4;

// Kinds of WM_JOB_FINISHED.
inline constexpr std::uintptr_t kFinishedTurboScan = 0;
inline constexpr std::uintptr_t kFinishedSave = 1;
inline constexpr std::uintptr_t kFinishedFileTypes = 2;
inline constexpr std::uintptr_t kFinishedBasicScan = 3;

} // namespace thntfs
