#include "support/FailingFileStore.h"

#include <utility>

namespace thntfs::test {

namespace {

class FailingFile final : public File {
public:
    FailingFile(std::unique_ptr<File> inner, std::shared_ptr<FailurePlan> plan)
        : inner_(std::move(inner))
        , plan_(std::move(plan)) {}

    ErrorCode Write(ConstBytes bytes) override {
        return WriteOrHalf(bytes, [this](ConstBytes part) { return inner_->Write(part); });
    }
    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        return WriteOrHalf(bytes, [=, this](ConstBytes part) { return inner_->WriteAt(offset, part); });
    }
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        got = 0;
        return plan_->Try([&] { return inner_->ReadAt(offset, buffer, got); });
    }
    ErrorCode Size(std::uint64_t& bytes) override {
        return plan_->Try([&] { return inner_->Size(bytes); });
    }
    ErrorCode Sync() override {
        return plan_->Try([this] { return inner_->Sync(); });
    }
    ErrorCode Close() override {
        return plan_->Try([this] { return inner_->Close(); });
    }

private:
    template <typename Road>
    ErrorCode WriteOrHalf(ConstBytes bytes, Road write) {
        const ErrorCode error = plan_->NextCall();
        const ErrorCode done = write(error == kErrorNone ? bytes : bytes.first(bytes.size() / 2));
        return error == kErrorNone ? done : error;
    }

    std::unique_ptr<File> inner_;
    std::shared_ptr<FailurePlan> plan_;
};

} // namespace

ErrorCode FailurePlan::NextCall() {
    ++Calls;
    const bool fails = FailingCall != 0 && (Calls == FailingCall || (FailOn && Calls > FailingCall));
    Failures += fails ? 1 : 0;
    return fails ? Error : kErrorNone;
}

FailingFileStore::~FailingFileStore() {
    if (&Files() == this) {
        SetFileStore(nullptr);
    }
}

void FailingFileStore::FailAt(std::uint64_t call, ErrorCode error, bool failOn) {
    *plan_ = {.FailingCall = call, .FailOn = failOn, .Error = error};
}

std::unique_ptr<File> FailingFileStore::Wrap(std::unique_ptr<File> file) {
    return std::make_unique<FailingFile>(std::move(file), plan_);
}

ErrorCode FailingFileStore::Open(const std::string& path, FileMode mode, std::unique_ptr<File>& file) {
    const ErrorCode error = plan_->Try([&] { return inner_.Open(path, mode, file); });
    file = error == kErrorNone ? Wrap(std::move(file)) : nullptr;
    return error;
}

ErrorCode FailingFileStore::Delete(const std::string& path) {
    return plan_->Try([&] { return inner_.Delete(path); });
}

ErrorCode FailingFileStore::Admit(std::unique_ptr<File>& file) {
    return plan_->Try([&] {
        file = Wrap(std::move(file));
        return kErrorNone;
    });
}

} // namespace thntfs::test
