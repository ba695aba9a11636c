#include "support/FaultyMedium.h"

#include "platform/media/Medium.h"

#include <algorithm>
#include <utility>

namespace thntfs::test {

namespace {

class FaultyMedium final : public Medium {
public:
    FaultyMedium(std::unique_ptr<Medium> inner, std::shared_ptr<FaultPlan> plan)
        : inner_(std::move(inner))
        , plan_(std::move(plan)) {}

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer) override {
        const std::size_t index = plan_->Log.size();
        plan_->Log.push_back({offset, buffer.size(), kErrorNone});
        if (plan_->OnRead) {
            plan_->OnRead(index, ReadRequest(plan_->Log[index]));
        }
        return plan_->Log[index].Result = Serve(offset, buffer);
    }
    [[nodiscard]] std::uint64_t SizeBytes() const override { return inner_->SizeBytes(); }
    [[nodiscard]] std::uint32_t DeviceSectorBytes() const override { return inner_->DeviceSectorBytes(); }

private:
    ErrorCode Serve(std::uint64_t offset, Bytes buffer) {
        FaultRule* rule = MatchingRule(offset, buffer.size());
        if (rule == nullptr) {
            return inner_->ReadAt(offset, buffer);
        }
        const ErrorCode code = rule->Code;
        rule->Times -= rule->Times != kForever ? 1 : 0;
        const std::uint64_t badOffset = rule->FirstSector * plan_->SectorBytes;
        if (plan_->GivePart && badOffset > offset) {
            inner_->ReadAt(offset, buffer.first(static_cast<std::size_t>(badOffset - offset)));
        }
        return code;
    }

    FaultRule* MatchingRule(std::uint64_t offset, std::uint64_t size) {
        const std::uint64_t first = offset / plan_->SectorBytes;
        const std::uint64_t end = (offset + size + plan_->SectorBytes - 1) / plan_->SectorBytes;
        const auto rule = std::ranges::find_if(plan_->Rules, [=](const FaultRule& one) {
            return one.Times != 0 && one.FirstSector < end &&
                   (first < one.FirstSector || first - one.FirstSector < one.SectorCount);
        });
        return size == 0 || rule == plan_->Rules.end() ? nullptr : &*rule;
    }

    std::unique_ptr<Medium> inner_;
    std::shared_ptr<FaultPlan> plan_;
};

} // namespace

std::unique_ptr<Medium> MakeFaultyMedium(std::unique_ptr<Medium> inner, std::shared_ptr<FaultPlan> plan) {
    return std::make_unique<FaultyMedium>(std::move(inner), std::move(plan));
}

} // namespace thntfs::test
