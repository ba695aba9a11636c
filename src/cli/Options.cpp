#include "cli/Options.h"

#include "cli/ExitCode.h"
#include "cli/FindOptions.h"
#include "cli/Output.h"
#include "platform/system/Libraries.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>

namespace thntfs {

namespace {

constexpr const char* kDescription =
    "Finds deleted, damaged and lost files on NTFS volumes, from the raw sectors of a disk or image.\n"
    "It never writes to the medium.";

// Paragraphs, each behind the word that a manual page has as its heading.
constexpr const char* kFooter =
    "Paths: they use '/'. What stands under the volume's root is /folder/file; a file whose folder is lost "
    "stands\n"
    "under a folder named after the folder's record number, such as #1234/file.\n\n"
    "Exit status: 0 done, 1 failed, 2 wrong words, 3 done in part (each entry that failed is named).\n\n"
    "Notes: data goes to standard output, messages and progress to standard error. Ctrl+C stops a scan, a "
    "save or\n"
    "a copy; what was found so far is shown, and an image goes on with --resume. A disk or image that is "
    "read is\n"
    "opened for reading only; the target of clone is the one disk that is ever written.";

// A whole number from a lowest one up to what an unsigned can hold.
CLI::Validator WholeNumber(std::uint64_t lowest) {
    return CLI::Validator(
        [lowest](const std::string& text) {
            const bool digits =
                text.size() <= 10 && text.find_first_not_of("0123456789") == std::string::npos;
            const std::uint64_t number = digits && !text.empty() ? std::stoull(text) : ~std::uint64_t{0};
            return number >= lowest && number <= 0xFFFFFFFFU ? std::string()
                                                             : "'" + text + "' is not a whole number from " +
                                                                   std::to_string(lowest) + " to 4294967295";
        },
        "");
}

void AddMedium(CLI::App& command, Options& options) {
    command
        .add_option(
            "MEDIUM", options.Medium,
            "Disk image file or block device to read, or a scan information file (.tht, .thd) made from one")
        ->required();
    command.add_flag("--json", options.Json, "Print JSON");
    command.add_flag("--anyway", options.Anyway,
                     "Take a saved scan (.tht) even if its medium seems to be another one now");
    command.add_flag("--same-disk", options.SameDisk,
                     "Write files even onto the disk that is read; what they land on can't be recovered");
}

// Two sector numbers with a colon between them, the second not included.
std::string ReadRange(const std::string& text, Options& options) {
    const std::size_t colon = text.find(':');
    const auto isNumber = [](const std::string& part) {
        return !part.empty() && part.size() <= 18 &&
               part.find_first_not_of("0123456789") == std::string::npos;
    };
    if (colon == std::string::npos || !isNumber(text.substr(0, colon)) || !isNumber(text.substr(colon + 1))) {
        return "'" + text + "' is no range of sectors; give FIRST:END, such as 0:2000000";
    }
    options.RangeFirst = std::stoull(text.substr(0, colon));
    options.RangeEnd = std::stoull(text.substr(colon + 1));
    return {};
}

void AddSearch(CLI::App& command, Options& options) {
    static const std::map<std::string, SearchMethod> kMethods = {{"quick", SearchMethod::Quick},
                                                                 {"thorough", SearchMethod::Thorough}};
    CLI::Option* search =
        command
            .add_option("--search", options.Search,
                        "Search the sectors for lost volumes in place of reading the partition "
                        "table: 'quick' looks at cylinder borders, 'thorough' at every sector")
            ->transform(CLI::CheckedTransformer(kMethods).description(""))
            ->type_name("quick|thorough");
    command
        .add_option_function<std::string>(
            "--range", [](const std::string&) {},
            "Sectors that a thorough search looks at, the end not included")
        ->type_name("FIRST:END")
        ->check(CLI::Validator([&options](const std::string& text) { return ReadRange(text, options); }, ""))
        ->needs(search);
}

// A path that can only name a file.
CLI::Validator FileName() {
    return CLI::Validator(
        [](const std::string& text) {
            return text.empty() || text.back() == '/' ? "'" + text + "' is not the name of a file"
                                                      : std::string();
        },
        "");
}

void AddSaveInfo(CLI::App& command, Options& options, const std::string& what) {
    command.add_option("--save-info", options.SaveInfo, what)->type_name("FILE")->check(FileName());
}

void AddLog(CLI::App& command, Options& options) {
    command.add_option("--log", options.Log, "Write an account of what was done to a text file")
        ->type_name("FILE")
        ->check(FileName());
}

void AddTurbo(CLI::App& command, Options& options) {
    command.add_flag(
        "--turbo", options.Turbo,
        "Read the whole volume for records (Turbo Scan) in place of following its Master File Table");
}

void AddReach(CLI::App& command, Options& options) {
    command.add_flag("--deep", options.Deep,
                     "List records without a usable name too, as #N or under their short name");
    command.add_flag(
        "--as-stored", options.AsStored,
        "Take what the plain walk of the scan gives and no more, and files' data as it is stored");
}

void AddPartition(CLI::App& command, Options& options) {
    command
        .add_option("-p,--partition", options.Partition,
                    "Number of the partition, as 'partitions' shows it; may be left out where there is one, "
                    "or one verified one")
        ->check(WholeNumber(1));
    AddSearch(command, options);
    AddTurbo(command, options);
    AddReach(command, options);
}

// Words with commas between them.
std::string ReadConditions(const std::string& text, Options& options) {
    static const std::map<std::string, ConditionKind> kKinds = {{"whole", ConditionKind::Whole},
                                                                {"partly", ConditionKind::Partly},
                                                                {"overwritten", ConditionKind::Overwritten},
                                                                {"unknown", ConditionKind::Unknown}};
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t comma = std::min(text.find(',', at), text.size());
        const auto kind = kKinds.find(text.substr(at, comma - at));
        if (kind == kKinds.end()) {
            return "'" + text.substr(at, comma - at) +
                   "' is no condition; there are whole, partly, overwritten and unknown";
        }
        options.Conditions |= SetOf(kind->second);
        at = comma + 1;
    }
    return {};
}

void AddCondition(CLI::App& command, Options& options) {
    command
        .add_option_function<std::string>(
            "--condition", [](const std::string&) {},
            "Files in this condition only: a deleted file is whole, partly there, overwritten or unknown. "
            "Several with commas between them")
        ->type_name("whole|partly|overwritten|unknown")
        ->check(CLI::Validator([&options](const std::string& text) { return ReadConditions(text, options); },
                               ""));
}

void AddPartitions(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand(
        "partitions", "List the NTFS volumes of the partition table, or search for lost ones");
    AddMedium(*command, options);
    AddSearch(*command, options);
    AddSaveInfo(*command, options, "Keep the volumes found in a partition scan information file (.thd)");
    command->callback([&options] { options.Chosen = Command::Partitions; });
}

void AddScan(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand(
        "scan", "Catalogue a volume along its Master File Table; print totals and folder tree");
    AddMedium(*command, options);
    AddPartition(*command, options);
    command->add_flag("--files", options.Files, "Show files in the tree too");
    AddSaveInfo(*command, options, "Keep the scan's result in a tree scan information file (.tht)");
    command->callback([&options] { options.Chosen = Command::Scan; });
}

void AddList(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("list", "List the entries of a folder, live and deleted");
    AddMedium(*command, options);
    command->add_option("PATH", options.Paths, "Folder to list; without it, all top-level entries")
        ->expected(0, 1);
    AddPartition(*command, options);
    command->add_flag("-r,--recursive", options.Recursive, "List all that is below, too");
    CLI::Option* csv =
        command->add_flag("--csv", options.Csv, "Print comma-separated values, for spreadsheets");
    CLI::Option* body = command->add_flag(
        "--bodyfile", options.BodyFile, "Print a body file for mactime, with the four times of each record");
    csv->excludes(body)->excludes("--json");
    body->excludes("--json");
    command->add_flag("-d,--deleted", options.Deleted, "Deleted entries only");
    AddCondition(*command, options);
    command->callback([&options] { options.Chosen = Command::List; });
}

void AddFind(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand(
        "find", "List the entries whose names match a pattern, such as '*.jpg', wherever they are");
    AddMedium(*command, options);
    command
        ->add_option(
            "PATTERN", options.Criteria.Pattern,
            "'*' stands for any letters, '?' for any one; quote it, so that the shell leaves it alone")
        ->required();
    AddFindCriteria(*command, options.Criteria);
    AddPartition(*command, options);
    command->add_flag("-d,--deleted", options.Criteria.DeletedOnly, "Deleted entries only");
    command->callback([&options] { options.Chosen = Command::Find; });
}

void AddCat(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("cat", "Write one file's bytes to standard output");
    AddMedium(*command, options);
    command->get_option("--json")->description("Makes no difference here: the file's bytes are written");
    CLI::Option* path =
        command->add_option("PATH", options.Paths, "File to write; PATH:NAME takes its stream NAME")
            ->expected(0, 1);
    CLI::Option* record =
        command->add_option("--record", options.Record, "Number of the file's record, in place of a path");
    record->check(WholeNumber(0))->excludes(path);
    AddPartition(*command, options);
    command->callback([&options] {
        options.Chosen = Command::Cat;
        if (options.Paths.empty() && !options.Record) {
            throw CLI::RequiredError("PATH or --record");
        }
    });
}

void AddSaveTarget(CLI::App& command, Options& options) {
    CLI::Option_group* targets = command.add_option_group("Target");
    targets->add_option("--to", options.Target, "Folder to save to; made if missing")->type_name("DIR");
    targets
        ->add_option_function<std::string>(
            "--zip",
            [&options](const std::string& path) {
                options.Zip = true;
                options.Target = path;
            },
            "ZIP file to make in place of loose files; must not be there yet")
        ->type_name("FILE")
        ->check(FileName());
    targets->require_option(1);
}

// Words with commas between them.
void ReadTypes(const std::string& text, FileTypes& types) {
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t comma = std::min(text.find(',', at), text.size());
        (void)types.Add(std::string_view(text).substr(at, comma - at));
        at = comma + 1;
    }
}

void AddExclude(CLI::App& command, Options& options) {
    command
        .add_option_function<std::string>(
            "--exclude", [&options](const std::string& text) { ReadTypes(text, options.Excluded); },
            "Leave out files of these types, by what follows the last dot of the name, such as tmp,bak")
        ->type_name("TYPE,TYPE...");
}

void AddSave(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand(
        "save", "Save entries and all below them to a folder of another disk, or into one ZIP file");
    AddMedium(*command, options);
    command->add_option("PATH", options.Paths, "Files or folders to save; without any, everything");
    AddSaveTarget(*command, options);
    AddPartition(*command, options);
    CLI::Option* deleted = command->add_flag("-d,--deleted", options.Deleted, "Deleted entries only");
    command->add_flag("--existing", options.Existing, "Entries that aren't deleted only")->excludes(deleted);
    AddNamePattern(*command, options.Criteria);
    AddFindCriteria(*command, options.Criteria);
    AddExclude(*command, options);
    AddCondition(*command, options);
    command->add_flag("--streams", options.Streams,
                      "Save named streams too, each beside its file or folder as NAME#STREAM");
    command
        ->add_option(
            "--report", options.Report,
            "Write a line of JSON for each file: path, record, size, bytes, condition, reason, SHA-256. "
            "FILE must not be there yet")
        ->type_name("FILE")
        ->check(FileName());
    command->callback([command, &options] {
        options.Chosen = Command::Save;
        options.ByCriteria = HasFindCriteria(*command);
        if (options.Streams && options.AsStored) {
            throw CLI::ExcludesError("--streams", "--as-stored");
        }
    });
}

void AddDisks(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("disks", "List the disks of this machine");
    command->add_flag("--json", options.Json, "Print JSON");
    command->callback([&options] { options.Chosen = Command::Disks; });
}

void AddSource(CLI::App& command, Options& options) {
    command.add_option("SOURCE", options.Medium, "Block device or disk image file to copy")->required();
    command.add_flag("--json", options.Json, "Print JSON");
}

void AddImage(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand(
        "image", "Copy a whole disk to an image file, bad sectors as zeros, with a map of them beside it");
    AddSource(*command, options);
    command->add_option("FILE", options.Target, "Image file to make, such as disk.th2; its map is FILE.map")
        ->required()
        ->check(FileName());
    command->add_flag("--resume", options.Resume, "Go on with an image that was stopped");
    command
        ->add_option(
            "--retry", options.Retries,
            "Read the bad sectors again, up to N times; of an image that is there already only these")
        ->check(WholeNumber(1));
    command->callback([&options] { options.Chosen = Command::Image; });
}

void AddClone(CLI::App& app, Options& options) {
    CLI::App* command =
        app.add_subcommand("clone", "Copy a whole disk onto another one, which loses all that is on it");
    AddSource(*command, options);
    command
        ->add_option("TARGET", options.Target, "Block device to write over, or a file that is large enough")
        ->required();
    command->add_flag("--yes", options.Yes, "Really do it; without it, what would be lost is shown");
    command->callback([&options] { options.Chosen = Command::Clone; });
}

std::string Version() {
    const std::string json = std::to_string(NLOHMANN_JSON_VERSION_MAJOR) + "." +
                             std::to_string(NLOHMANN_JSON_VERSION_MINOR) + "." +
                             std::to_string(NLOHMANN_JSON_VERSION_PATCH);
    return VersionText({{"CLI11", CLI11_VERSION}, {"nlohmann_json", json}});
}

void AddMount(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand(
        "mount", "Show the files in a folder, for other programs to read, until Ctrl+C or an unmount");
    AddMedium(*command, options);
    command->add_option("DIR", options.Target, "Empty folder to mount at; nothing is written to it")
        ->required();
    AddPartition(*command, options);
    command->add_flag("-d,--deleted", options.Deleted, "Deleted entries only");
    AddCondition(*command, options);
    command->callback([&options] { options.Chosen = Command::Mount; });
}

void TellMissingCommand(int argc, const char* const* argv) {
    PrintMessage(argc > 1 ? "'" + std::string(argv[1]) + "' is no command of this program."
                          : "Tell what is to be done with which disk or image.");
    PrintMessage("The commands are disks, partitions, scan, list, find, cat, save, image, clone and mount; "
                 "--help explains them.");
}

} // namespace

void DescribeProgram(CLI::App& app, Options& options) {
    app.name("th-ntfs-cli");
    app.description(kDescription);
    app.set_version_flag("--version", Version);
    app.footer(kFooter);
    app.require_subcommand(1);
    app.get_formatter()->label("TEXT", "");
    app.get_formatter()->label("UINT", "N");
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("REQUIRED", "(required)");
    AddDisks(app, options);
    AddPartitions(app, options);
    AddScan(app, options);
    AddList(app, options);
    AddFind(app, options);
    AddCat(app, options);
    AddSave(app, options);
    AddImage(app, options);
    AddClone(app, options);
    AddMount(app, options);
    for (CLI::App* command : app.get_subcommands({})) {
        AddLog(*command, options);
    }
    for (CLI::App* command : app.get_subcommands({})) {
        command->group("Commands");
    }
}

std::optional<Options> ReadOptions(int argc, const char* const* argv, int& exitCode) {
    Options options;
    CLI::App app;
    DescribeProgram(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& shown) {
        exitCode = app.exit(shown, std::cout, std::cerr);
        return std::nullopt;
    } catch (const CLI::ParseError& wrong) {
        if (app.get_subcommands().empty()) {
            TellMissingCommand(argc, argv);
        } else {
            app.exit(wrong, std::cout, std::cerr);
        }
        exitCode = kExitWrongWords;
        return std::nullopt;
    }
    return options;
}

} // namespace thntfs
