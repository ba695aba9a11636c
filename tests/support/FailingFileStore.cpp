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
        const ErrorCode error = plan_->NextCall();
        if (error == kErrorNone) {
            return inner_->Write(bytes);
        }
        (void)inner_->Write(bytes.first(bytes.size() / 2));
        return error;
    }

    ErrorCode WriteAt(std::uint64_t offset, ConstBytes bytes) override {
        const ErrorCode error = plan_->NextCall();
        if (error == kErrorNone) {
            return inner_->WriteAt(offset, bytes);
        }
        (void)inner_->WriteAt(offset, bytes.first(bytes.size() / 2));
        return error;
    }

    ErrorCode ReadAt(std::uint64_t offset, Bytes buffer, std::size_t& got) override {
        got = 0;
        const ErrorCode error = plan_->NextCall();
        return error != kErrorNone ? error : inner_->ReadAt(offset, buffer, got);
    }

    ErrorCode Size(std::uint64_t& bytes) override {
        const ErrorCode error = plan_->NextCall();
        return error != kErrorNone ? error : inner_->Size(bytes);
    }

    ErrorCode Sync() override {
        const ErrorCode error = plan_->NextCall();
        return error != kErrorNone ? error : inner_->Sync();
    }

    ErrorCode Close() override {
        const ErrorCode error = plan_->NextCall();
        return error != kErrorNone ? error : inner_->Close();
    }

private:
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

FailingFileStore::FailingFileStore(FileStore& inner)
    : inner_(inner)
    , plan_(std::make_shared<FailurePlan>()) {}

FailingFileStore::~FailingFileStore() {
    if (&Files() == this) {
        SetFileStore(nullptr);
    }
}

void FailingFileStore::FailAt(std::uint64_t call, ErrorCode error, bool failOn) {
    *plan_ = FailurePlan{};
    plan_->FailingCall = call;
    plan_->Error = error;
    plan_->FailOn = failOn;
}

std::unique_ptr<File> FailingFileStore::Wrap(std::unique_ptr<File> file) {
    return std::make_unique<FailingFile>(std::move(file), plan_);
}

ErrorCode FailingFileStore::Open(const std::string& path, FileMode mode, std::unique_ptr<File>& file) {
    file.reset();
    ErrorCode error = plan_->NextCall();
    if (error == kErrorNone) {
        error = inner_.Open(path, mode, file);
    }
    if (error == kErrorNone) {
        file = Wrap(std::move(file));
    }
    return error;
}

ErrorCode FailingFileStore::Delete(const std::string& path) {
    const ErrorCode error = plan_->NextCall();
    return error != kErrorNone ? error : inner_.Delete(path);
}

ErrorCode FailingFileStore::Admit(std::unique_ptr<File>& file) {
    const ErrorCode error = plan_->NextCall();
    if (error == kErrorNone) {
        file = Wrap(std::move(file));
    }
    return error;
}

} // namespace thntfs::test
