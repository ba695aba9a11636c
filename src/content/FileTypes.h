#pragma once

#include <set>
#include <string>
#include <string_view>

namespace thntfs {

/// A set of file types: what follows the last dot of a name, compared without case.
class FileTypes {
public:
    /// Takes a type in, UTF-8, with or without its dot. False where it is empty or there already.
    bool Add(std::string_view type);

    [[nodiscard]] bool Empty() const { return types_.empty(); }

    /// True where a file of this name is of one of these types.
    [[nodiscard]] bool Has(std::u16string_view name) const;

private:
    std::set<std::u16string> types_; ///< folded, without their dots
};

} // namespace thntfs
