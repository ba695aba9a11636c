#pragma once

#include <cstdint>

namespace thntfs {

// The numbers of the commands.

inline constexpr std::uint32_t kCmdWizard = 32771;
inline constexpr std::uint32_t kCmdLoadTreeInfo = 32772;
inline constexpr std::uint32_t kCmdOpenFoundDrive = 32773;
inline constexpr std::uint32_t kCmdFind = 32774;
inline constexpr std::uint32_t kCmdFindNext = 32775;
inline constexpr std::uint32_t kCmdSaveChecked = 32776;
inline constexpr std::uint32_t kCmdSaveAll = 32778;
inline constexpr std::uint32_t kCmdStop = 32780;
inline constexpr std::uint32_t kCmdTurboScan = 32781;
inline constexpr std::uint32_t kCmdClearLog = 32783;
inline constexpr std::uint32_t kCmdSaveLog = 32784;
inline constexpr std::uint32_t kCmdThemeOffice2000 = 32787;
inline constexpr std::uint32_t kCmdThemeOffice2003 = 32788;
inline constexpr std::uint32_t kCmdThemeOfficeXp = 32789;
inline constexpr std::uint32_t kCmdThemeNative = 32790;
inline constexpr std::uint32_t kCmdTips = 32791;
inline constexpr std::uint32_t kCmdFeatures = 32792;
inline constexpr std::uint32_t kCmdContact = 32793;
inline constexpr std::uint32_t kCmdFaq = 32794;
inline constexpr std::uint32_t kCmdUpdate = 32796;
inline constexpr std::uint32_t kCmdParentFolder = 32819;
inline constexpr std::uint32_t kCmdHound = 32821;
inline constexpr std::uint32_t kCmdLoadPartitionInfo = 32832;
inline constexpr std::uint32_t kCmdSaveTreeInfo = 32833;
inline constexpr std::uint32_t kCmdSavePartitionInfo = 32834;
inline constexpr std::uint32_t kCmdListNameless = 32900;
inline constexpr std::uint32_t kCmdCloneDisk = 32901;
inline constexpr std::uint32_t kCmdCopyNames = 32910;
inline constexpr std::uint32_t kCmdCopyPaths = 32911;
inline constexpr std::uint32_t kCmdSaveList = 32912;
inline constexpr std::uint32_t kCmdFilter = 32913;
inline constexpr std::uint32_t kCmdPathLine = 32914;
inline constexpr std::uint32_t kCmdSizesInBytes = 32915;
inline constexpr std::uint32_t kCmdSizesInUnits = 32916;
inline constexpr std::uint32_t kCmdClearRecent = 32917;
/// The first of those that open what was opened before, newest first.
inline constexpr std::uint32_t kCmdRecent = 32920;
inline constexpr std::uint32_t kRecentCommands = 8;
inline constexpr std::uint32_t kCmdOpenAsFolder = 32930;
inline constexpr std::uint32_t kCmdToolbar16 = 32708;
inline constexpr std::uint32_t kCmdToolbar48 = 32711;
inline constexpr std::uint32_t kCmdAbout = 57664;
inline constexpr std::uint32_t kCmdExit = 57665;
inline constexpr std::uint32_t kCmdHelpContents = 57667;
inline constexpr std::uint32_t kCmdViewToolbar = 59392;
inline constexpr std::uint32_t kCmdViewStatusBar = 59393;
inline constexpr std::uint32_t kCmdLargeIcons = 60000;
inline constexpr std::uint32_t kCmdSmallIcons = 60001;
inline constexpr std::uint32_t kCmdList = 60002;
inline constexpr std::uint32_t kCmdDetails = 60003;
inline constexpr std::uint32_t kCmdEscape = 61208;

} // namespace thntfs
