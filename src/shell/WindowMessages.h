#pragma once

#include "shell/MessageTarget.h"

#include <cstdint>
#include <tuple>
#include <type_traits>

namespace thntfs {

struct BelowCounts;
struct CopyFigures;
struct CopyJob;
struct EntryFacts;
struct FolderNodes;
struct ProcessLogEntry;
struct SaveNameRequest;

/// A numbered message and the types of what its words carry, two at most: numbers, and references or pointers
/// to what stays the sender's.
template <typename... Words>
class WindowMessage {
public:
    explicit constexpr WindowMessage(std::uint32_t number)
        : number_(number) {}

    constexpr operator std::uint32_t() const { return number_; } // NOLINT(google-explicit-constructor)

    /// As SendWindowMessage.
    std::intptr_t Send(MessageTarget* target, Words... words) const {
        return SendWindowMessage(target, number_, Pack<Words>(words)...);
    }

    /// As PostWindowMessage.
    void Post(MessageTarget* target, Words... words) const {
        static_assert(((std::is_integral_v<Words> || std::is_enum_v<Words>)&&...),
                      "what a posted message points to may be gone when it arrives");
        PostWindowMessage(target, number_, Pack<Words>(words)...);
    }

    /// What the words of a message of this number carry.
    decltype(auto) First(std::uintptr_t wParam) const { return Unpack<0>(wParam); }
    decltype(auto) Second(std::uintptr_t lParam) const { return Unpack<1>(lParam); }

private:
    template <typename T>
    static std::uintptr_t Pack(T value) {
        if constexpr (std::is_reference_v<T>) {
            return reinterpret_cast<std::uintptr_t>(&value);
        } else if constexpr (std::is_pointer_v<T>) {
            return reinterpret_cast<std::uintptr_t>(value);
        } else {
            return static_cast<std::uintptr_t>(value);
        }
    }

    // NOLINTBEGIN(performance-no-int-to-ptr,bugprone-branch-clone): a message's words are numbers
    template <std::size_t Place>
    static decltype(auto) Unpack(std::uintptr_t word) {
        using T = std::tuple_element_t<Place, std::tuple<Words...>>;
        if constexpr (std::is_reference_v<T>) {
            return static_cast<T>(*reinterpret_cast<std::remove_reference_t<T>*>(word));
        } else if constexpr (std::is_pointer_v<T>) {
            return reinterpret_cast<T>(word);
        } else {
            return static_cast<T>(word);
        }
    }
    // NOLINTEND(performance-no-int-to-ptr,bugprone-branch-clone)

    std::uint32_t number_;
};

/// Works and events of WM_COPY_EVENT.
enum class CopyWork : std::uint8_t { Clone = 0, Image = 1, Scan = 2 };
enum class CopyEvent : std::uint8_t { Completed = 1, Aborted = 2, Paused = 3, Resumed = 4 };

/// Kinds of WM_JOB_FINISHED.
enum class FinishedJob : std::uint8_t { TurboScan = 0, Save = 1, FileTypes = 2, BasicScan = 3, List = 4 };

/// Kinds of WM_UPDATE_TOTALS; with All goes 0, with Marked 1.
enum class Totals : std::uint8_t { All = 1, Marked = 2 };

// The numbers of the program's own window messages. They restart for each receiver, so a number may mean two
// things at two windows.

inline constexpr std::uint32_t WM_APP = 0x8000;

// To the main frame.
inline constexpr WindowMessage<> WM_SHOW_TIPS{WM_APP + 1};
inline constexpr WindowMessage<const ProcessLogEntry&> WM_LOG_EVENT{WM_APP + 2};
/// Sectors done, total sectors; low 32 bits.
inline constexpr WindowMessage<std::uint32_t, std::uint32_t> WM_COPY_POSITION{WM_APP + 3};
inline constexpr WindowMessage<CopyWork, CopyEvent> WM_COPY_EVENT{WM_APP + 4};
inline constexpr WindowMessage<> WM_START_BASIC_SCAN{WM_APP + 5};
inline constexpr WindowMessage<FinishedJob> WM_JOB_FINISHED{WM_APP + 6};
/// ProgressDone of ProgressTotal has moved.
inline constexpr WindowMessage<> WM_JOB_PROGRESS{WM_APP + 7};
/// The job's phase; the text stays for good.
inline constexpr WindowMessage<const char*> WM_PROGRESS_CAPTION{WM_APP + 8};
inline constexpr WindowMessage<Totals, std::uint32_t> WM_UPDATE_TOTALS{WM_APP + 9};
/// 0 from the list, EntryId from the tree.
inline constexpr WindowMessage<std::uint32_t> WM_SAVE_REQUEST{WM_APP + 10};
/// EntryId, as with the next two.
inline constexpr WindowMessage<std::uint32_t> WM_SHOW_PROPERTIES{WM_APP + 11};
inline constexpr WindowMessage<std::uint32_t> WM_FIND_FROM_VIEW{WM_APP + 12};
inline constexpr WindowMessage<std::uint32_t> WM_SHOW_PREVIEW{WM_APP + 13};
/// Empties tree and list.
inline constexpr WindowMessage<> WM_CLEAR_VIEWS{WM_APP + 14};
/// The worker could not begin or go on.
inline constexpr WindowMessage<> WM_JOB_FAILED{WM_APP + 15};
/// As WM_CLEAR_VIEWS; gives 1 where the user keeps what they show.
inline constexpr WindowMessage<> WM_GIVE_UP_SCAN{WM_APP + 16};
/// Gets the answer.
inline constexpr WindowMessage<SaveNameRequest&> WM_SAVE_NAME{WM_APP + 18};

// To the process log.
inline constexpr WindowMessage<const ProcessLogEntry&> WM_LOG_ADD{WM_APP + 17};

// To the dialog of a copy.
/// The job is moved from.
inline constexpr WindowMessage<CopyJob&> WM_START_CLONE{WM_APP + 20};
/// Total sectors, sectors done; low 32 bits.
inline constexpr WindowMessage<std::uint32_t, std::uint32_t> WM_COPY_PROGRESS{WM_APP + 21};
inline constexpr WindowMessage<CopyWork, CopyEvent> WM_COPY_FINISHED{WM_APP + 22};
/// The job is moved from.
inline constexpr WindowMessage<CopyJob&> WM_START_IMAGE{WM_APP + 24};
/// What WM_COPY_PROGRESS has no words for.
inline constexpr WindowMessage<const CopyFigures&> WM_COPY_FIGURES{WM_APP + 25};

// To the dialog that runs a partition search.
/// Not sent: the dialog begins by itself. The number stays taken.
inline constexpr WindowMessage<> WM_START_PARTITION_SEARCH{WM_APP + 50};
/// Sector reached, sectors in all; low 32 bits.
inline constexpr WindowMessage<std::uint32_t, std::uint32_t> WM_SEARCH_POSITION{WM_APP + 51};
/// Low 32 bits of the start sector.
inline constexpr WindowMessage<std::uint32_t> WM_PARTITION_FOUND{WM_APP + 52};
/// Whether it ran to its end.
inline constexpr WindowMessage<bool> WM_SEARCH_FINISHED{WM_APP + 53};

// To the folder tree.
/// EntryId, as with the next one.
inline constexpr WindowMessage<std::uint32_t> WM_TREE_SELECT_CHILD{WM_APP + 53};
inline constexpr WindowMessage<std::uint32_t> WM_TREE_SELECT_FOLDER{WM_APP + 55};
/// The folders are moved from.
inline constexpr WindowMessage<FolderNodes&> WM_TREE_FILLED{WM_APP + 56};

// To the tab of the properties.
inline constexpr WindowMessage<const BelowCounts&> WM_PROPS_PROGRESS{WM_APP + 256};
/// The worker was stopped and is through.
inline constexpr WindowMessage<> WM_PROPS_DONE{WM_APP + 257};
inline constexpr WindowMessage<const EntryFacts&> WM_PROPS_FACTS{WM_APP + 258};

// To the properties' sheet.
/// It ends with the result -1.
inline constexpr WindowMessage<> WM_PROPS_CLOSE{WM_APP + 513};

// To the file list.
/// EntryId of a folder.
inline constexpr WindowMessage<std::uint32_t> WM_LIST_SHOW_FOLDER{WM_APP + 529};

} // namespace thntfs
