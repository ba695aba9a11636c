#include "catalogue/Conditions.h"

#include "catalogue/CatalogueReader.h"
#include "engine/EngineState.h"
#include "platform/system/CoreText.h"

#include <algorithm>
#include <new>

namespace thntfs {

namespace {

Condition ConditionOfByte(std::uint8_t byte) {
    switch (byte) {
    case kWhole:
        return {ConditionKind::Whole, 100};
    case kOverwritten:
        return {ConditionKind::Overwritten, 0};
    default:
        return byte != kNotJudged && byte < kWhole ? Condition{ConditionKind::Partly, byte}
                                                   : Condition{ConditionKind::Unknown, 0};
    }
}

} // namespace

std::uint8_t ConditionByte(std::uint64_t good, std::uint64_t total) {
    if (good >= total) {
        return kWhole;
    }
    if (good == 0) {
        return kOverwritten;
    }
    const auto share =
        static_cast<std::uint64_t>(static_cast<double>(good) / static_cast<double>(total) * 100);
    return static_cast<std::uint8_t>(std::clamp<std::uint64_t>(share, 1, 99));
}

void ClearConditions() { Engine.Conditions = {}; }

void SetCondition(std::uint32_t entryId, std::uint8_t byte) try {
    if (entryId >= Engine.Conditions.size()) {
        Engine.Conditions.resize(std::size_t{entryId} + 1, kNotJudged);
    }
    Engine.Conditions[entryId] = byte;
} catch (const std::bad_alloc&) {
    // The entry counts as not judged.
}

Condition ConditionOf(std::uint32_t entryId, bool folder, bool live) {
    if (folder) {
        return {};
    }
    const std::uint8_t byte = entryId < Engine.Conditions.size() ? Engine.Conditions[entryId] : kNotJudged;
    return ConditionOfByte(live && byte == kNotJudged ? kWhole : byte);
}

Condition ConditionOf(const CatalogueItem& item) {
    return ConditionOf(item.EntryId, item.IsFolder(), item.IsLive());
}

const char* ConditionWord(ConditionKind kind) {
    switch (kind) {
    case ConditionKind::Unknown:
        return CoreText("Core", "unknown");
    case ConditionKind::Whole:
        return CoreText("Core", "whole");
    case ConditionKind::Partly:
        return "partly";
    case ConditionKind::Overwritten:
        return CoreText("Core", "overwritten");
    case ConditionKind::None:
        break;
    }
    return "";
}

std::string ConditionText(Condition condition, bool live) {
    if (live && condition.Kind == ConditionKind::Whole) {
        return {};
    }
    const std::string word = ConditionWord(condition.Kind);
    return condition.Kind == ConditionKind::Partly ? word + " " + std::to_string(condition.Share) + " %"
                                                   : word;
}

unsigned ConditionRank(Condition condition, bool live) {
    if (condition.Kind == ConditionKind::None) {
        return 0;
    }
    return condition.Kind == ConditionKind::Unknown ? 1U : 2U + condition.Share + (live ? 1U : 0U);
}

bool ConditionWanted(ConditionSet wanted, const CatalogueItem& item) {
    return wanted == 0 || (wanted & SetOf(ConditionOf(item).Kind)) != 0;
}

} // namespace thntfs
