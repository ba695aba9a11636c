#pragma once

#include "catalogue/Conditions.h"
#include "catalogue/FindCriteria.h"
#include "content/FileTypes.h"
#include "partitions/PartitionSearch.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace thntfs {

enum class Command { None, Partitions, Scan, List, Find, Cat, Save, Disks, Image, Clone, Mount };

/// The words of one call of the terminal program.
struct Options {
    Command Chosen = Command::None;
    std::string Medium;
    std::optional<unsigned> Partition; ///< counted from 1
    bool Json = false;
    std::optional<std::string> Log;      ///< file that gets the process log
    bool SameDisk = false;               ///< files may be written on the disk that is read
    std::optional<std::string> SaveInfo; ///< scan, partitions: scan information file to be written

    std::optional<SearchMethod> Search; ///< the candidates come from a search, not from the partition table
    std::optional<std::uint64_t> RangeFirst; ///< Thorough search: first sector
    std::optional<std::uint64_t> RangeEnd;   ///< Thorough search: end sector, not included
    bool Anyway = false;                     ///< a saved scan counts though its medium has changed
    bool Turbo = false;                      ///< Turbo Scan in place of Basic Scan
    bool Deep = false;                       ///< records without a usable name are listed too
    bool AsStored = false; ///< scans take no record beyond their own walk, files get their data as stored

    bool Files = false;                ///< scan: files in the tree too
    bool Recursive = false;            ///< list
    bool Csv = false;                  ///< list: comma-separated values
    bool BodyFile = false;             ///< list: lines of a body file
    bool Deleted = false;              ///< list, save, mount: deleted entries alone
    ConditionSet Conditions = 0;       ///< list, save, mount: files in these conditions alone
    FindCriteria Criteria;             ///< find, save
    bool ByCriteria = false;           ///< save: entries that meet the criteria alone
    bool Streams = false;              ///< save: named streams too
    std::optional<std::string> Report; ///< save: file that gets a line of JSON a file
    FileTypes Excluded;                ///< save: files of these types are left out
    bool Existing = false;             ///< save: live entries alone
    bool Zip = false;                  ///< save: the target is one ZIP file
    std::string Target; ///< save: the folder or ZIP file to save to; image, clone: where the copy goes;
                        ///< mount: the folder to mount at
    std::vector<std::string> Paths;
    std::optional<std::uint32_t> Record; ///< cat: a record number in place of a path

    bool Resume = false;  ///< image: go on with one that was stopped
    unsigned Retries = 0; ///< image: how often the bad sectors are read again
    bool Yes = false;     ///< clone: the target may be written over
};

/// Gives the program its description, its commands and their options. `options` outlives the program; it gets
/// what the words say once they are parsed.
void DescribeProgram(CLI::App& app, Options& options);

/// Reads the words. Gives the options, or nothing where the program ends here: help was shown, or the words
/// are wrong and standard error says how; `exitCode` is then set.
std::optional<Options> ReadOptions(int argc, const char* const* argv, int& exitCode);

} // namespace thntfs
