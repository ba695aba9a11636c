#include "frame/CommandTable.h"

#include "frame/CommandIds.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>

namespace thntfs {

namespace {

constexpr auto kCommands = std::to_array<CommandText>({
    {kCmdWizard, QT_TRANSLATE_NOOP("CommandTable", "&Wizard\tCtrl+W"),
     QT_TRANSLATE_NOOP("CommandTable", "Click here to launch wizard"),
     QT_TRANSLATE_NOOP("CommandTable", "Wizard"), "wizard"},
    {kCmdOpenFoundDrive, QT_TRANSLATE_NOOP("CommandTable", "Open found &Logical Drive\tCtrl+Shift+O"),
     QT_TRANSLATE_NOOP("CommandTable", "Open found logical drives"),
     QT_TRANSLATE_NOOP("CommandTable", " Open logical drive"), "open-drive"},
    {kCmdLoadPartitionInfo, QT_TRANSLATE_NOOP("CommandTable", "Load &Partition Info"),
     QT_TRANSLATE_NOOP("CommandTable", "Loads a list of found partitions."),
     QT_TRANSLATE_NOOP("CommandTable", "Load Partition Info"), "load-info"},
    {kCmdLoadTreeInfo, QT_TRANSLATE_NOOP("CommandTable", "Load &Tree Info\tCtrl+O"),
     QT_TRANSLATE_NOOP("CommandTable", "Loads the scan results of a partition."),
     QT_TRANSLATE_NOOP("CommandTable", "Load Tree Info"), "load-info"},
    {kCmdCloneDisk, QT_TRANSLATE_NOOP("CommandTable", "&Clone Disk"),
     QT_TRANSLATE_NOOP("CommandTable", "Copies a disk onto another one, which loses all that is on it"),
     QT_TRANSLATE_NOOP("CommandTable", "Clone Disk"), "task-clone"},
    {kCmdExit, QT_TRANSLATE_NOOP("CommandTable", "E&xit\tAlt+F4"),
     QT_TRANSLATE_NOOP("CommandTable", "Exit Tarnholt Volume Salvage (NTFS) ?"),
     QT_TRANSLATE_NOOP("CommandTable", "Exit"), "exit"},
    {kCmdFind, QT_TRANSLATE_NOOP("CommandTable", "&Find\tCtrl+F"),
     QT_TRANSLATE_NOOP("CommandTable", "Finds specified files/folders"),
     QT_TRANSLATE_NOOP("CommandTable", "Find"), "find"},
    {kCmdFindNext, QT_TRANSLATE_NOOP("CommandTable", "Find Next\tF3"),
     QT_TRANSLATE_NOOP("CommandTable", "Finds next matching files/folders"),
     QT_TRANSLATE_NOOP("CommandTable", "Find Next"), "find-next"},
    {kCmdSaveAll, QT_TRANSLATE_NOOP("CommandTable", "Save All\tCtrl+Shift+S"),
     QT_TRANSLATE_NOOP("CommandTable", "Saves all recovered data"),
     QT_TRANSLATE_NOOP("CommandTable", "Save All"), "save-all"},
    {kCmdSaveChecked, "\tCtrl+S", QT_TRANSLATE_NOOP("CommandTable", "Saves checked files/folders."),
     QT_TRANSLATE_NOOP("CommandTable", " Save Checked"), ""},
    {kCmdStop, QT_TRANSLATE_NOOP("CommandTable", "Stop Current Process\tF4"),
     QT_TRANSLATE_NOOP("CommandTable", "Stops any disk/file scanning process."),
     QT_TRANSLATE_NOOP("CommandTable", "Stop Current Process"), "stop"},
    {kCmdSavePartitionInfo, QT_TRANSLATE_NOOP("CommandTable", "Save &Partition Info"),
     QT_TRANSLATE_NOOP("CommandTable", "Saves list of found partitions"),
     QT_TRANSLATE_NOOP("CommandTable", "Save Partition Info"), "save-info"},
    {kCmdSaveTreeInfo, QT_TRANSLATE_NOOP("CommandTable", "Save &Tree Info"),
     QT_TRANSLATE_NOOP("CommandTable", "Saves the scan results of a partition"),
     QT_TRANSLATE_NOOP("CommandTable", "Save Tree Info"), "save-info"},
    {kCmdParentFolder, QT_TRANSLATE_NOOP("CommandTable", "&Go to Parent Folder"),
     QT_TRANSLATE_NOOP("CommandTable", "Return to the parent folder"),
     QT_TRANSLATE_NOOP("CommandTable", "Goto Parent"), "parent"},
    {kCmdTurboScan, QT_TRANSLATE_NOOP("CommandTable", "Turbo Scan\tCtrl+T"),
     QT_TRANSLATE_NOOP("CommandTable", "Searches for lost files/folders"),
     QT_TRANSLATE_NOOP("CommandTable", "Turbo Scan"), "turbo-scan"},
    {kCmdHound, QT_TRANSLATE_NOOP("CommandTable", "Spoor Hou&nd"),
     QT_TRANSLATE_NOOP("CommandTable", "Performs search of known file types in physical media"),
     QT_TRANSLATE_NOOP("CommandTable", "Spoor Hound "), "hound"},
    {kCmdListNameless, QT_TRANSLATE_NOOP("CommandTable", "List Nameless &Records"),
     QT_TRANSLATE_NOOP("CommandTable", "Lists records without a usable name, too, from the next scan on"),
     QT_TRANSLATE_NOOP("CommandTable", "List Nameless Records"), ""},
    {kCmdClearLog, QT_TRANSLATE_NOOP("CommandTable", "Cl&ear Process  Log"),
     QT_TRANSLATE_NOOP("CommandTable", "Deletes the contents of Process log window"), "", "log-clear"},
    {kCmdSaveLog, QT_TRANSLATE_NOOP("CommandTable", "Sa&ve Process Log"),
     QT_TRANSLATE_NOOP("CommandTable", "Saves the contents of process  log window to text file."), "",
     "log-save"},
    {kCmdViewToolbar, QT_TRANSLATE_NOOP("CommandTable", "ToolBar"),
     QT_TRANSLATE_NOOP("CommandTable", "Show or hide the toolbar"),
     QT_TRANSLATE_NOOP("CommandTable", "Toggle ToolBar"), ""},
    {kCmdViewStatusBar, QT_TRANSLATE_NOOP("CommandTable", "&Status Bar"),
     QT_TRANSLATE_NOOP("CommandTable", "Show or hide the status bar"),
     QT_TRANSLATE_NOOP("CommandTable", "Toggle StatusBar"), ""},
    {kCmdLargeIcons, QT_TRANSLATE_NOOP("CommandTable", "&Large Icons"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays item using large icon in list view."), "", ""},
    {kCmdSmallIcons, QT_TRANSLATE_NOOP("CommandTable", "S&mall Icons"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays items using small icons in list view."), "", ""},
    {kCmdList, QT_TRANSLATE_NOOP("CommandTable", "L&ist"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays items in a list"), "", ""},
    {kCmdDetails, QT_TRANSLATE_NOOP("CommandTable", "&Details"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays information about each item in the list view"), "", ""},
    {kCmdHelpContents, QT_TRANSLATE_NOOP("CommandTable", "&Contents\tF1"),
     QT_TRANSLATE_NOOP("CommandTable", "Lists help topics"), QT_TRANSLATE_NOOP("CommandTable", " Help"),
     "help"},
    {kCmdTips, QT_TRANSLATE_NOOP("CommandTable", "&Tip of the day"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays tip of the day window "), "", ""},
    {kCmdFeatures, QT_TRANSLATE_NOOP("CommandTable", "Software Feature"), "", "", ""},
    {kCmdContact, QT_TRANSLATE_NOOP("CommandTable", "Contact Us"), "", "", ""},
    {kCmdFaq, QT_TRANSLATE_NOOP("CommandTable", "FAQ"), "", "", ""},
    {kCmdUpdate, QT_TRANSLATE_NOOP("CommandTable", "&Update Wizard"),
     QT_TRANSLATE_NOOP("CommandTable", "Check for software updates"),
     QT_TRANSLATE_NOOP("CommandTable", "Update Wizard"), "update"},
    {kCmdAbout, QT_TRANSLATE_NOOP("CommandTable", "&About \tCtrl+B"), "", "", ""},
    {kCmdThemeOffice2000, "",
     QT_TRANSLATE_NOOP("CommandTable", "Applys Office 2000 theme to application window."), "", ""},
    {kCmdThemeOffice2003, "",
     QT_TRANSLATE_NOOP("CommandTable", "Applys Office 2003 theme to application window."), "", ""},
    {kCmdThemeOfficeXp, "",
     QT_TRANSLATE_NOOP("CommandTable", "Applys Office XP theme to application window."), "", ""},
    {kCmdThemeNative, "", QT_TRANSLATE_NOOP("CommandTable", "Applys Windows XP theme to application window."),
     "", ""},
    {kCmdToolbar16, QT_TRANSLATE_NOOP("CommandTable", "16x16 pixels"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays toolbar window in 16x16 pixels"), "", ""},
    {kCmdToolbar16 + 1, QT_TRANSLATE_NOOP("CommandTable", "24x24 pixels"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays toolbar window in 24x24 pixels"), "", ""},
    {kCmdToolbar16 + 2, QT_TRANSLATE_NOOP("CommandTable", "32x32 pixels"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays toolbar window in 32x32 pixels"), "", ""},
    {kCmdToolbar48, QT_TRANSLATE_NOOP("CommandTable", "48x48 pixels"),
     QT_TRANSLATE_NOOP("CommandTable", "Displays toolbar window in 48x48 pixels"), "", ""},
    {kCmdEscape, "\tEsc", "", "", ""},
    {kCmdCopyNames, QT_TRANSLATE_NOOP("CommandTable", "&Copy Names"),
     QT_TRANSLATE_NOOP("CommandTable", "Copies the names of the rows that are selected in the list"),
     QT_TRANSLATE_NOOP("CommandTable", "Copy Names"), ""},
    {kCmdCopyPaths, QT_TRANSLATE_NOOP("CommandTable", "Copy &Paths\tCtrl+Shift+C"),
     QT_TRANSLATE_NOOP("CommandTable", "Copies the names with the folders that they stand in"),
     QT_TRANSLATE_NOOP("CommandTable", "Copy Paths"), ""},
    {kCmdSaveList, QT_TRANSLATE_NOOP("CommandTable", "Save List &As..."),
     QT_TRANSLATE_NOOP("CommandTable", "Writes a list of files to a table or a body file"),
     QT_TRANSLATE_NOOP("CommandTable", "Save List"), ""},
    {kCmdFilter, QT_TRANSLATE_NOOP("CommandTable", "&Filter List\tCtrl+Shift+F"),
     QT_TRANSLATE_NOOP("CommandTable", "Narrows the list to names with a text in them"),
     QT_TRANSLATE_NOOP("CommandTable", "Filter List"), ""},
    {kCmdPathLine, QT_TRANSLATE_NOOP("CommandTable", "&Path Line\tCtrl+L"),
     QT_TRANSLATE_NOOP("CommandTable", "Goes to the line that tells where you are"),
     QT_TRANSLATE_NOOP("CommandTable", "Path Line"), ""},
    {kCmdSizesInBytes, QT_TRANSLATE_NOOP("CommandTable", "Sizes in &Bytes"),
     QT_TRANSLATE_NOOP("CommandTable", "Shows sizes in the list in bytes"), "", ""},
    {kCmdSizesInUnits, QT_TRANSLATE_NOOP("CommandTable", "Sizes in &KB, MB, GB"),
     QT_TRANSLATE_NOOP("CommandTable", "Shows sizes in the list in the unit that fits"), "", ""},
    {kCmdRecent, "", "", "", ""},
    {kCmdRecent + 1, "", "", "", ""},
    {kCmdRecent + 2, "", "", "", ""},
    {kCmdRecent + 3, "", "", "", ""},
    {kCmdRecent + 4, "", "", "", ""},
    {kCmdRecent + 5, "", "", "", ""},
    {kCmdRecent + 6, "", "", "", ""},
    {kCmdRecent + 7, "", "", "", ""},
    {kCmdClearRecent, QT_TRANSLATE_NOOP("CommandTable", "&Clear List"),
     QT_TRANSLATE_NOOP("CommandTable", "Forgets what was opened before"),
     QT_TRANSLATE_NOOP("CommandTable", "Clear List"), ""},
    {kCmdOpenAsFolder, QT_TRANSLATE_NOOP("CommandTable", "&Open as Folder"),
     QT_TRANSLATE_NOOP("CommandTable", "Shows the found files in a folder that other programs can read"),
     QT_TRANSLATE_NOOP("CommandTable", "Open as Folder"), ""},
});

constexpr MenuLine Line(std::uint32_t command) { return {MenuLine::Kind::Command, command, "", ""}; }
constexpr MenuLine Submenu(const char* title, const char* prompt) {
    return {MenuLine::Kind::Submenu, 0, title, prompt};
}
constexpr MenuLine kSeparator{MenuLine::Kind::Separator, 0, "", ""};
constexpr MenuLine kEndSubmenu{MenuLine::Kind::EndSubmenu, 0, "", ""};

constexpr auto kFileMenu =
    std::to_array<MenuLine>({Line(kCmdWizard),
                             Line(kCmdOpenFoundDrive),
                             Submenu(QT_TRANSLATE_NOOP("CommandTable", "Open Saved Scan Info"), ""),
                             Line(kCmdLoadPartitionInfo),
                             Line(kCmdLoadTreeInfo),
                             kEndSubmenu,
                             Line(kCmdCloneDisk),
                             Submenu(QT_TRANSLATE_NOOP("CommandTable", "Open &Recent"),
                                     QT_TRANSLATE_NOOP("CommandTable", "Opens what was opened before")),
                             Line(kCmdRecent),
                             Line(kCmdRecent + 1),
                             Line(kCmdRecent + 2),
                             Line(kCmdRecent + 3),
                             Line(kCmdRecent + 4),
                             Line(kCmdRecent + 5),
                             Line(kCmdRecent + 6),
                             Line(kCmdRecent + 7),
                             kSeparator,
                             Line(kCmdClearRecent),
                             kEndSubmenu,
                             kSeparator,
                             Line(kCmdExit)});

constexpr auto kToolsMenu =
    std::to_array<MenuLine>({Line(kCmdFind),
                             Line(kCmdFindNext),
                             Line(kCmdSaveAll),
                             Line(kCmdStop),
                             Submenu(QT_TRANSLATE_NOOP("CommandTable", "Save Scan Information\tCtrl+I"),
                                     QT_TRANSLATE_NOOP("CommandTable", "Saves scanned information")),
                             Line(kCmdSavePartitionInfo),
                             Line(kCmdSaveTreeInfo),
                             kEndSubmenu,
                             Line(kCmdParentFolder),
                             kSeparator,
                             Line(kCmdTurboScan),
                             Line(kCmdHound),
                             Line(kCmdListNameless),
                             kSeparator,
                             Line(kCmdClearLog),
                             Line(kCmdSaveLog),
                             kSeparator,
                             Line(kCmdCopyNames),
                             Line(kCmdCopyPaths),
                             Line(kCmdSaveList),
                             Line(kCmdOpenAsFolder)});

constexpr auto kViewMenu = std::to_array<MenuLine>(
    {Line(kCmdViewToolbar),
     Line(kCmdViewStatusBar),
     kSeparator,
     Line(kCmdLargeIcons),
     Line(kCmdSmallIcons),
     Line(kCmdList),
     Line(kCmdDetails),
     kSeparator,
     Submenu(QT_TRANSLATE_NOOP("CommandTable", "Toolbar Si&ze"),
             QT_TRANSLATE_NOOP("CommandTable", "Chooses the size of the toolbar's buttons")),
     Line(kCmdToolbar16),
     Line(kCmdToolbar16 + 1),
     Line(kCmdToolbar16 + 2),
     Line(kCmdToolbar48),
     kEndSubmenu, // elsewhere only the mouse comes to them
     kSeparator,
     Line(kCmdSizesInBytes),
     Line(kCmdSizesInUnits),
     kSeparator,
     Line(kCmdFilter),
     Line(kCmdPathLine)});

constexpr auto kHelpMenu = std::to_array<MenuLine>({Line(kCmdHelpContents), Line(kCmdTips), kSeparator,
                                                    Line(kCmdFeatures), Line(kCmdContact), Line(kCmdFaq),
                                                    Line(kCmdUpdate), kSeparator, Line(kCmdAbout)});

constexpr auto kMenus = std::to_array<MenuText>({{QT_TRANSLATE_NOOP("CommandTable", "&File"), kFileMenu},
                                                 {QT_TRANSLATE_NOOP("CommandTable", "&Tools"), kToolsMenu},
                                                 {QT_TRANSLATE_NOOP("CommandTable", "&View"), kViewMenu},
                                                 {QT_TRANSLATE_NOOP("CommandTable", "&Help"), kHelpMenu}});

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
