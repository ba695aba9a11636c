#include "frame/CommandRules.h"

#include "frame/CommandIds.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace thntfs::test {
namespace {

const std::vector<std::pair<std::uint32_t, std::string>> kRuled{
    {kCmdWizard, "wizard"},
    {kCmdOpenFoundDrive, "open drive"},
    {kCmdLoadPartitionInfo, "load partitions"},
    {kCmdLoadTreeInfo, "load tree"},
    {kCmdFind, "find"},
    {kCmdFindNext, "find next"},
    {kCmdSaveAll, "save all"},
    {kCmdSaveChecked, "save checked"},
    {kCmdStop, "stop"},
    {kCmdSavePartitionInfo, "save partitions"},
    {kCmdSaveTreeInfo, "save tree"},
    {kCmdParentFolder, "parent"},
    {kCmdTurboScan, "turbo"},
    {kCmdHound, "hound"},
    {kCmdClearLog, "clear log"},
    {kCmdSaveLog, "save log"},
};

using Names = std::set<std::string>;

Names EnabledIn(const FrameState& state) {
    Names names;
    for (const auto& [command, name] : kRuled) {
        if (CommandEnabled(command, state)) {
            names.insert(name);
        }
    }
    return names;
}

FrameState Full() {
    FrameState state;
    state.HasTree = state.HasPartitions = state.HasLog = state.HasFound = state.CurrentHasParent = true;
    state.BasicScanDone = true;
    return state;
}

TEST(CommandRules, FollowTheStates) {
    const Names atStart{"wizard", "load partitions", "load tree", "hound"};
    const Names all{"wizard",    "open drive", "load partitions", "load tree", "find",
                    "find next", "save all",   "save partitions", "save tree", "parent",
                    "turbo",     "hound",      "clear log",       "save log"};

    EXPECT_EQ(EnabledIn({}), atStart);
    EXPECT_EQ(EnabledIn(Full()), all);

    FrameState running = Full();
    running.ScanRunning = running.JobBusy = true;
    EXPECT_EQ(EnabledIn(running), (Names{"stop", "clear log", "save log"}));

    FrameState stopping = Full();
    stopping.JobBusy = true;
    EXPECT_EQ(EnabledIn(stopping), (Names{"open drive", "load partitions", "load tree", "save partitions",
                                          "clear log", "save log"}));

    FrameState copying = running;
    copying.HasCopyDialog = true;
    EXPECT_EQ(EnabledIn(copying), (Names{"clear log", "save log"}));
}

TEST(CommandRules, TurboScanHasTwoRoads) {
    FrameState used = Full();
    used.TurboScanUsed = true;
    EXPECT_FALSE(CommandEnabled(kCmdTurboScan, used));

    FrameState neverScanned = Full();
    neverScanned.BasicScanDone = false;
    EXPECT_FALSE(CommandEnabled(kCmdTurboScan, neverScanned));

    FrameState missing;
    missing.StructuresMissing = true;
    EXPECT_TRUE(CommandEnabled(kCmdTurboScan, missing));
    EXPECT_FALSE(CommandEnabled(kCmdHound, missing));
}

TEST(CommandRules, WhatHasNoRuleIsAlwaysEnabled) {
    FrameState running;
    running.ScanRunning = running.JobBusy = true;
    for (const std::uint32_t command : {kCmdExit, kCmdViewToolbar, kCmdDetails, kCmdHelpContents, kCmdTips,
                                        kCmdAbout, kCmdUpdate, kCmdThemeNative, kCmdEscape}) {
        EXPECT_TRUE(CommandEnabled(command, running)) << command;
    }
}

} // namespace
} // namespace thntfs::test
