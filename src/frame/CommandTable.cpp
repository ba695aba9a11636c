#include "frame/CommandTable.h"

#include "frame/CommandIds.h"

#include <algorithm>
#include <array>

namespace thntfs {

namespace {

constexpr auto kCommands = std::to_array<CommandText>({
    {kCmdWizard, "&Wizard\tCtrl+W", "Click here to launch wizard", "Wizard", "wizard"},
    {kCmdOpenFoundDrive, "Open found &Logical Drive\tCtrl+Shift+O", "Open found logical drives",
     " Open logical drive", "open-drive"},
    {kCmdLoadPartitionInfo, "Load &Partition Info", "Loads a list of found partitions.",
     "Load Partition Info", "load-info"},
    {kCmdLoadTreeInfo, "Load &Tree Info\tCtrl+O", "Loads the scan results of a partition.", "Load Tree Info",
     "load-info"},
    {kCmdCloneDisk, "&Clone Disk", "Copies a disk onto another one, which loses all that is on it",
     "Clone Disk", "task-clone"},
    {kCmdExit, "E&xit\tAlt+F4", "Exit Tarnholt Volume Salvage (NTFS) ?", "Exit", "exit"},
    {kCmdFind, "&Find\tCtrl+F", "Finds specified files/folders", "Find", "find"},
    {kCmdFindNext, "Find Next\tF3", "Finds next matching files/folders", "Find Next", "find-next"},
    {kCmdSaveAll, "Save All\tCtrl+Shift+S", "Saves all recovered data", "Save All", "save-all"},
    {kCmdSaveChecked, "\tCtrl+S", "Saves checked files/folders.", " Save Checked", ""},
    {kCmdStop, "Stop Current Process\tF4", "Stops any disk/file scanning process.", "Stop Current Process",
     "stop"},
    {kCmdSavePartitionInfo, "Save &Partition Info", "Saves list of found partitions", "Save Partition Info",
     "save-info"},
    {kCmdSaveTreeInfo, "Save &Tree Info", "Saves the scan results of a partition", "Save Tree Info",
     "save-info"},
    {kCmdParentFolder, "&Go to Parent Folder", "Return to the parent folder", "Goto Parent", "parent"},
    {kCmdTurboScan, "Turbo Scan\tCtrl+T", "Searches for lost files/folders", "Turbo Scan", "turbo-scan"},
    {kCmdHound, "Spoor Hou&nd", "Performs search of known file types in physical media", "Spoor Hound ",
     "hound"},
    {kCmdListNameless, "List Nameless &Records",
     "Lists records without a usable name, too, from the next scan on", "List Nameless Records", ""},
    {kCmdClearLog, "Cl&ear Process  Log", "Deletes the contents of Process log window", "", "log-clear"},
    {kCmdSaveLog, "Sa&ve Process Log", "Saves the contents of process  log window to text file.", "",
     "log-save"},
    {kCmdViewToolbar, "ToolBar", "Show or hide the toolbar", "Toggle ToolBar", ""},
    {kCmdViewStatusBar, "&Status Bar", "Show or hide the status bar", "Toggle StatusBar", ""},
    {kCmdLargeIcons, "&Large Icons", "Displays item using large icon in list view.", "", ""},
    {kCmdSmallIcons, "S&mall Icons", "Displays items using small icons in list view.", "", ""},
    {kCmdList, "L&ist", "Displays items in a list", "", ""},
    {kCmdDetails, "&Details", "Displays information about each item in the list view", "", ""},
    {kCmdHelpContents, "&Contents\tF1", "Lists help topics", " Help", "help"},
    {kCmdTips, "&Tip of the day", "Displays tip of the day window ", "", ""},
    {kCmdFeatures, "Software Feature", "", "", ""},
    {kCmdContact, "Contact Us", "", "", ""},
    {kCmdFaq, "FAQ", "", "", ""},
    {kCmdUpdate, "&Update Wizard", "Check for software updates", "Update Wizard", "update"},
    {kCmdAbout, "&About \tCtrl+B", "", "", ""},
    {kCmdThemeOffice2000, "", "Applys Office 2000 theme to application window.", "", ""},
    {kCmdThemeOffice2003, "", "Applys Office 2003 theme to application window.", "", ""},
    {kCmdThemeOfficeXp, "", "Applys Office XP theme to application window.", "", ""},
    {kCmdThemeNative, "", "Applys Windows XP theme to application window.", "", ""},
    {kCmdToolbar16, "16x16 pixels", "Displays toolbar window in 16x16 pixels", "", ""},
    {kCmdToolbar16 + 1, "24x24 pixels", "Displays toolbar window in 24x24 pixels", "", ""},
    {kCmdToolbar16 + 2, "32x32 pixels", "Displays toolbar window in 32x32 pixels", "", ""},
    {kCmdToolbar48, "48x48 pixels", "Displays toolbar window in 48x48 pixels", "", ""},
    {kCmdEscape, "\tEsc", "", "", ""},
});

constexpr MenuLine Line(std::uint32_t command) { return {MenuLine::Kind::Command, command, "", ""}; }
constexpr MenuLine Submenu(const char* title, const char* prompt) {
    return {MenuLine::Kind::Submenu, 0, title, prompt};
}
constexpr MenuLine kSeparator{MenuLine::Kind::Separator, 0, "", ""};
constexpr MenuLine kEndSubmenu{MenuLine::Kind::EndSubmenu, 0, "", ""};

constexpr auto kFileMenu =
    std::to_array<MenuLine>({Line(kCmdWizard), Line(kCmdOpenFoundDrive), Submenu("Open Saved Scan Info", ""),
                             Line(kCmdLoadPartitionInfo), Line(kCmdLoadTreeInfo), kEndSubmenu,
                             Line(kCmdCloneDisk), kSeparator, Line(kCmdExit)});

constexpr auto kToolsMenu = std::to_array<MenuLine>(
    {Line(kCmdFind), Line(kCmdFindNext), Line(kCmdSaveAll), Line(kCmdStop),
     Submenu("Save Scan Information\tCtrl+I", "Saves scanned information"), Line(kCmdSavePartitionInfo),
     Line(kCmdSaveTreeInfo), kEndSubmenu, Line(kCmdParentFolder), kSeparator, Line(kCmdTurboScan),
     Line(kCmdHound), Line(kCmdListNameless), kSeparator, Line(kCmdClearLog), Line(kCmdSaveLog)});

constexpr auto kViewMenu =
    std::to_array<MenuLine>({Line(kCmdViewToolbar), Line(kCmdViewStatusBar), kSeparator, Line(kCmdLargeIcons),
                             Line(kCmdSmallIcons), Line(kCmdList), Line(kCmdDetails)});

constexpr auto kHelpMenu = std::to_array<MenuLine>({Line(kCmdHelpContents), Line(kCmdTips), kSeparator,
                                                    Line(kCmdFeatures), Line(kCmdContact), Line(kCmdFaq),
                                                    Line(kCmdUpdate), kSeparator, Line(kCmdAbout)});

constexpr auto kMenus = std::to_array<MenuText>(
    {{"&File", kFileMenu}, {"&Tools", kToolsMenu}, {"&View", kViewMenu}, {"&Help", kHelpMenu}});

constexpr auto kToolbar = std::to_array<std::uint32_t>(
    {kCmdWizard, 0, kCmdHound, kCmdTurboScan, 0, kCmdFind, kCmdFindNext, 0, kCmdSaveAll, 0, kCmdStop, 0,
     kCmdParentFolder, 0, kCmdUpdate, 0, kCmdHelpContents});

} // namespace

std::span<const CommandText> AllCommands() { return kCommands; }

const CommandText& TextOfCommand(std::uint32_t command) {
    return *std::find_if(kCommands.begin(), kCommands.end(),
                         [command](const CommandText& text) { return text.Id == command; });
}

std::span<const MenuText> AllMenus() { return kMenus; }
std::span<const std::uint32_t> ToolbarCommands() { return kToolbar; }

} // namespace thntfs
