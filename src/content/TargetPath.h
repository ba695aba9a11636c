#pragma once

#include "content/FreeName.h"
#include "platform/files/TargetFolder.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace thntfs {

/// The folders on the way from the target down to the entry in hand. Each is made when something is to go
/// into it, under a name that is free. However long the way is, the handles of its last folders alone are
/// open: one further up is opened again by its name, from the nearest open one above it, which leads through
/// no link and never out of the target.
class TargetPath {
public:
    struct Level {
        std::u16string Name;                  ///< in the catalogue
        std::string MadeName;                 ///< in the target; empty as long as it is not made
        std::unique_ptr<TargetFolder> Handle; ///< null where it is not open
        bool Failed = false;                  ///< it can't be made
        bool Transparent = false;             ///< " Root": what is in it goes into the level above
        NextNumbers Numbers;
    };

    /// Told once of each folder that is made, or can't be, with its path in the catalogue and the code.
    using Teller = std::function<void(const Level& level, const std::string& path, ErrorCode code)>;

    explicit TargetPath(std::unique_ptr<TargetFolder> target);

    /// The target itself.
    [[nodiscard]] TargetFolder& Target() const { return *levels_.front().Handle; }

    /// Folders on the way, the target counted.
    [[nodiscard]] std::size_t Length() const { return levels_.size(); }

    /// Leaves all folders but the first `length`.
    void Cut(std::size_t length) { levels_.resize(length); }

    void Enter(const std::u16string& name, bool transparent);

    /// The innermost folder, made and open; null where it, or one above it, can't be.
    Level* Open(const Teller& tell);

private:
    [[nodiscard]] std::size_t InnermostOpen() const;
    ErrorCode OpenBelow(Level& above, std::size_t index, const Teller& tell);
    [[nodiscard]] std::string PathOf(std::size_t index) const;
    void CloseFarAbove(std::size_t index);

    std::vector<Level> levels_;
};

} // namespace thntfs
