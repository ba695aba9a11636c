#include "cli/Commands.h"
#include "cli/ExitCode.h"
#include "cli/Output.h"
#include "partitions/DiskEnumeration.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

namespace thntfs {

namespace {

struct Column {
    const char* Title;
    std::string DiskInfo::*Field;
    bool Right; ///< numbers stand at the right
};

constexpr std::array<Column, 11> kColumns = {{{"Name", &DiskInfo::Name, false},
                                              {"Size", &DiskInfo::Size, true},
                                              {"Interface", &DiskInfo::InterfaceType, false},
                                              {"Media", &DiskInfo::MediaType, false},
                                              {"Serial", &DiskInfo::Serial, false},
                                              {"Firmware", &DiskInfo::Revision, false},
                                              {"Sectors", &DiskInfo::TotalSectors, true},
                                              {"Bytes", &DiskInfo::BytesPerSector, true},
                                              {"Cylinders", &DiskInfo::TotalCylinders, true},
                                              {"Heads", &DiskInfo::TotalHeads, true},
                                              {"Model", &DiskInfo::Model, false}}};

std::string Shown(const std::string& text) {
    std::string shown;
    AppendPrintable(shown, text);
    return shown;
}

void AppendCell(std::string& line, const std::string& text, const Column& column, std::size_t width) {
    const std::string pad(width - std::min(width, text.size()), ' ');
    line += line.empty() ? "" : "  ";
    line += column.Right ? pad + text : text + pad;
}

/// `cellOf` gives a column's text of the row.
template <typename CellOf>
void PutRow(Output& output, const std::array<std::size_t, kColumns.size()>& widths, CellOf cellOf) {
    std::string line;
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        AppendCell(line, cellOf(kColumns[i]), kColumns[i], widths[i]);
    }
    output.Put(line.substr(0, line.find_last_not_of(' ') + 1) + "\n");
}

void PutTable(Output& output, const std::vector<DiskInfo>& disks) {
    std::array<std::size_t, kColumns.size()> widths{};
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        widths[i] = std::string(kColumns[i].Title).size();
        for (const DiskInfo& disk : disks) {
            widths[i] = std::max(widths[i], Shown(disk.*kColumns[i].Field).size());
        }
    }
    PutRow(output, widths, [](const Column& column) { return std::string(column.Title); });
    for (const DiskInfo& disk : disks) {
        PutRow(output, widths, [&disk](const Column& column) { return Shown(disk.*column.Field); });
    }
}

void PutDisksJson(Output& output, const std::vector<DiskInfo>& disks) {
    auto array = nlohmann::ordered_json::array();
    for (const DiskInfo& disk : disks) {
        array.push_back({{"Name", disk.Name},
                         {"MediaType", disk.MediaType},
                         {"InterfaceType", disk.InterfaceType},
                         {"TotalSectors", disk.TotalSectors},
                         {"TotalCylinders", disk.TotalCylinders},
                         {"TotalHeads", disk.TotalHeads},
                         {"Size", disk.Size},
                         {"Serial", disk.Serial},
                         {"Revision", disk.Revision},
                         {"Model", disk.Model},
                         {"BytesPerSector", disk.BytesPerSector}});
    }
    output.Put(array.dump(2) + "\n");
}

} // namespace

int RunDisks(const Options& options) {
    const std::vector<DiskInfo> disks = EnumerateDisks();
    Output output;
    if (options.Json) {
        PutDisksJson(output, disks);
    } else if (disks.empty()) {
        PrintMessage("The system shows no disk here.");
    } else {
        PutTable(output, disks);
    }
    return output.Finish(kExitDone);
}

} // namespace thntfs
