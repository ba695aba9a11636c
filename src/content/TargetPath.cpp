#include "content/TargetPath.h"

#include "platform/system/Text.h"

namespace thntfs {

namespace {

constexpr std::size_t kOpenHandles = 64; // of the 1,024 that a process has by custom

} // namespace

TargetPath::TargetPath(std::unique_ptr<TargetFolder> target) {
    levels_.emplace_back().Handle = std::move(target);
}

void TargetPath::Enter(const std::u16string& name, bool transparent) {
    Level& level = levels_.emplace_back();
    level.Name = name;
    level.Transparent = transparent;
}

TargetPath::Level* TargetPath::Open(const Teller& tell) {
    std::size_t above = InnermostOpen();
    for (std::size_t i = above + 1; i < levels_.size(); ++i) {
        Level& level = levels_[i];
        if (level.Transparent) {
            continue;
        }
        if (level.Failed || OpenBelow(levels_[above], i, tell) != kErrorNone) {
            return nullptr;
        }
        CloseFarAbove(i);
        above = i;
    }
    return &levels_[above];
}

std::size_t TargetPath::InnermostOpen() const {
    std::size_t index = levels_.size() - 1;
    while (levels_[index].Handle == nullptr) {
        --index; // the target is always open
    }
    return index;
}

ErrorCode TargetPath::OpenBelow(Level& above, std::size_t index, const Teller& tell) {
    Level& level = levels_[index];
    if (!level.MadeName.empty()) {
        return above.Handle->OpenSubfolder(level.MadeName, level.Handle);
    }
    std::string name = TargetName(level.Name);
    const ErrorCode code = TakeFreeName(above.Numbers, name, [&](const std::string& free) {
        return above.Handle->MakeSubfolder(free, level.Handle);
    });
    level.Failed = code != kErrorNone;
    level.MadeName = level.Failed ? "" : name;
    tell(level, PathOf(index), code);
    return code;
}

std::string TargetPath::PathOf(std::size_t index) const {
    std::string path;
    for (std::size_t i = 1; i <= index; ++i) {
        path += i > 1 ? "/" : "";
        if (!levels_[i].Transparent) {
            AppendNarrowText(path, levels_[i].Name);
        }
    }
    return path;
}

void TargetPath::CloseFarAbove(std::size_t index) {
    if (index > kOpenHandles) {
        levels_[index - kOpenHandles].Handle.reset();
    }
}

} // namespace thntfs
