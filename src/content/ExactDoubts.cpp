#include "content/ExactDoubts.h"

#include <utility>

namespace thntfs {

namespace {

constexpr std::pair<Doubt, const char*> kDoubtTexts[] = {
    {Doubt::ListDamaged, "its attribute list is damaged"},
    {Doubt::PieceMissing, "the record of a piece of its runs is damaged, and the piece is zeros"},
    {Doubt::PieceForeign,
     "the record of a piece of its runs is another file's by now, and the piece is zeros"},
    {Doubt::RunsDamaged, "its runs are damaged"},
    {Doubt::RunsMissing, "its runs leave out a part of it, which is zeros"},
    {Doubt::SizeImpossible, "its record states a size that no file has"},
    {Doubt::ClusterSize, "it was laid out in clusters of another size than the volume's"},
    {Doubt::CompressionUnit, "its record states units of compression that no driver makes"},
    {Doubt::DataDamaged, "compressed data in it is damaged"},
    {Doubt::Encrypted, "it is encrypted, and its bytes are as they lie on the medium"},
    {Doubt::SystemCompressed, "the system has compressed it in a way that this program can't read"},
    {Doubt::Elsewhere, "its bytes lie in another place, to which its record only points"},
};

} // namespace

std::vector<std::string> Doubts::Reasons() const {
    std::vector<std::string> reasons;
    for (const auto& [doubt, text] : kDoubtTexts) {
        if (Has(doubt)) {
            reasons.emplace_back(text);
        }
    }
    return reasons;
}

} // namespace thntfs
