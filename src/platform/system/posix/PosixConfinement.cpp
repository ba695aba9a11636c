#include "platform/system/Confinement.h"

#include <algorithm>
#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace thntfs {

namespace {

constexpr std::uint64_t kMaxOpenFiles = 64;
constexpr unsigned kFirstFurtherFile = 3;

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define THNTFS_NEEDS_ADDRESSES
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define THNTFS_NEEDS_ADDRESSES
#endif
#ifdef THNTFS_NEEDS_ADDRESSES
constexpr bool kBoundsAddresses = false;
#else
constexpr bool kBoundsAddresses = true;
#endif

// The user may have set a lower one, which can't be raised.
bool Bound(int resource, std::uint64_t most) {
    rlimit limit{};
    if (::getrlimit(resource, &limit) != 0) {
        return false;
    }
    limit.rlim_max = std::min<rlim_t>(limit.rlim_max, most);
    limit.rlim_cur = limit.rlim_max;
    return ::setrlimit(resource, &limit) == 0;
}

} // namespace

// An old kernel can't close a range of files; those of this program close by themselves. A library may try to
// write a cache of its own, which is to fail without ending the process.
bool ConfineProcess(const ProcessBounds& bounds) {
    ::signal(SIGXFSZ, SIG_IGN);
    ::close_range(kFirstFurtherFile, ~0U, 0);
    return ::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           Bound(RLIMIT_CPU, bounds.CpuSeconds) &&
           (!kBoundsAddresses || Bound(RLIMIT_AS, bounds.MemoryBytes)) && Bound(RLIMIT_CORE, 0) &&
           Bound(RLIMIT_FSIZE, 0) && Bound(RLIMIT_NOFILE, kMaxOpenFiles);
}

} // namespace thntfs
