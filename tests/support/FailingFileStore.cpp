#include "support/FailingFileStore.h"

#include <algorithm>
#include <utility>

namespace thntfs::test {

namespace {

class FailingFile final : public File {
public:
    FailingFile(std::unique_ptr<File> inner, std::shared_ptr<FailurePlan> plan)
        : inner_(std::move(inner))
        , plan_(std::move(plan)) {}

    ErrorCode Write(ConstBytes bytes) override {
        return Put(bytes, [this](ConstBytes part) { return inner_->Write(part); });
    }
    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        if (offset + bytes.size() > plan_->RoomInFile) {
            const std::uint64_t room = plan_->RoomInFile - std::min(offset, plan_->RoomInFile);
            (void)inner_->WriteAt(offset, bytes.first(room));
            return kErrorDiskFull;
        }
        return Put(bytes, [=, this](ConstBytes part) { return inner_->WriteAt(offset, part); });
    }
    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        got = 0;
        return plan_->Try(&File::ReadAt, *inner_, offset, buffer, got);
    }
    ErrorCode Size(std::uint64_t& bytes) override { return plan_->Try(&File::Size, *inner_, bytes); }
    ErrorCode SetSize(std::uint64_t bytes) override { return plan_->Try(&File::SetSize, *inner_, bytes); }
    void SetDates(const FileDates& dates) override { inner_->SetDates(dates); }
    ErrorCode Sync() override { return plan_->Try(&File::Sync, *inner_); }
    ErrorCode Close() override { return plan_->Try(&File::Close, *inner_); }

private:
    template <typename Write>
    ErrorCode Put(ConstBytes bytes, const Write& write) {
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
    const ErrorCode error = plan_->Try(&FileStore::Open, inner_, path, mode, file);
    file = error == kErrorNone ? Wrap(std::move(file)) : nullptr;
    return error;
}

ErrorCode FailingFileStore::Delete(const std::string& path) {
    return plan_->Try(&FileStore::Delete, inner_, path);
}

ErrorCode FailingFileStore::Admit(std::unique_ptr<File>& file) {
    const ErrorCode error = plan_->NextCall();
    file = error == kErrorNone ? Wrap(std::move(file)) : std::move(file);
    return error;
}

} // namespace thntfs::test
