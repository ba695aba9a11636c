#include "support/FaultyMedium.h"

#include "platform/media/Medium.h"

#include <utility>

namespace thntfs::test {

namespace {

class FaultyMedium : public Medium {
public:
    FaultyMedium(std::unique_ptr<Medium> inner, std::shared_ptr<FaultPlan> plan)
        : inner_(std::move(inner))
        , plan_(std::move(plan)) {}

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override;
    [[nodiscard]] std::uint64_t SizeBytes() const override { return inner_->SizeBytes(); }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return inner_->DeviceSectorBytes(); }

private:
    ErrorCode Serve(std::uint64_t offset, Bytes buffer);
    FaultRule* MatchingRule(std::uint64_t offset, std::uint64_t size);

    std::unique_ptr<Medium> inner_;
    std::shared_ptr<FaultPlan> plan_;
};

ErrorCode FaultyMedium::ReadAt(std::uint64_t offset, Bytes buffer) {
    const std::size_t index = plan_->Log.size();
    plan_->Log.push_back({offset, buffer.size(), kErrorNone});
    if (plan_->OnRead) {
        plan_->OnRead(index, ReadRequest(plan_->Log[index]));
    }
    const ErrorCode result = Serve(offset, buffer);
    plan_->Log[index].Result = result;
    return result;
}

ErrorCode FaultyMedium::Serve(std::uint64_t offset, Bytes buffer) {
    FaultRule* rule = MatchingRule(offset, buffer.size());
    if (rule == nullptr) {
        return inner_->ReadAt(offset, buffer);
    }
    const ErrorCode code = rule->Code;
    if (rule->Times != kForever) {
        --rule->Times;
    }
    const std::uint64_t badOffset = rule->FirstSector * plan_->SectorBytes;
    if (plan_->GivePart && badOffset > offset) {
        const ErrorCode inner =
            inner_->ReadAt(offset, buffer.first(static_cast<std::size_t>(badOffset - offset)));
        return inner != kErrorNone ? inner : code;
    }
    return code;
}

FaultRule* FaultyMedium::MatchingRule(std::uint64_t offset, std::uint64_t size) {
    if (size == 0) {
        return nullptr;
    }
    const std::uint64_t first = offset / plan_->SectorBytes;
    const std::uint64_t last = (offset + size - 1) / plan_->SectorBytes;
    for (FaultRule& rule : plan_->Rules) {
        const bool touches = rule.FirstSector <= last &&
                             (first < rule.FirstSector || first - rule.FirstSector < rule.SectorCount);
        if (touches && rule.SectorCount != 0 && rule.Times != 0) {
            return &rule;
        }
    }
    return nullptr;
}

} // namespace

std::unique_ptr<Medium> MakeFaultyMedium(std::unique_ptr<Medium> inner, std::shared_ptr<FaultPlan> plan) {
    return std::make_unique<FaultyMedium>(std::move(inner), std::move(plan));
}

} // namespace thntfs::test
