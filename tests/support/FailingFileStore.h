#pragma once

#include "platform/files/File.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace thntfs::test {

/// Where a failing store stands and what it is to do, shared with the files that it has opened.
struct FailurePlan {
    std::uint64_t Calls = 0;                      ///< calls seen so far, of the store and of all its files
    std::uint64_t FailingCall = 0;                ///< which call fails, counted from 1; 0 for none
    bool FailOn = false;                          ///< all calls after that one fail too
    ErrorCode Error = kErrorDiskFull;             ///< what a failing call answers
    std::uint64_t Failures = 0;                   ///< calls that were made to fail
    std::uint64_t RoomInFile = ~std::uint64_t{0}; ///< no file takes a byte behind this one

    /// Counts a call. The answer is kErrorNone or the failure of this call.
    ErrorCode NextCall();

    /// The same, and where it doesn't fail the call itself.
    template <typename Method, typename Object, typename... Arguments>
    ErrorCode Try(Method method, Object& object, Arguments&&... arguments) {
        const ErrorCode error = NextCall();
        return error == kErrorNone ? (object.*method)(std::forward<Arguments>(arguments)...) : error;
    }
};

/// A store over the one in use that fails at a chosen call: Open, Delete and Admit of the store, and every
/// call of its files. A failing write leaves the first half of its bytes in the file, as a full disk does.
///
///     FailingFileStore store;
///     SetFileStore(&store);
///     store.FailAt(k);
class FailingFileStore final : public FileStore {
public:
    /// Takes itself out of use if it is in use.
    ~FailingFileStore() override;

    [[nodiscard]] FailurePlan& Plan() { return *plan_; }

    /// Starts counting anew and lets the k-th call fail.
    void FailAt(std::uint64_t call, ErrorCode error = kErrorDiskFull, bool failOn = false);

    /// A file over another one that follows this store's plan.
    std::unique_ptr<File> Wrap(std::unique_ptr<File> file);

    ErrorCode Open(const std::string& path, FileMode mode, std::unique_ptr<File>& file) override;
    ErrorCode Delete(const std::string& path) override;
    ErrorCode Admit(std::unique_ptr<File>& file) override;

private:
    FileStore& inner_ = Files();
    std::shared_ptr<FailurePlan> plan_ = std::make_shared<FailurePlan>();
};

} // namespace thntfs::test
