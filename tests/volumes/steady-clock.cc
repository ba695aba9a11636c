// Preloaded into mkntfs and ntfs-3g by make-volumes, so that the same volume
// comes out on every run: the clock starts at VOLUME_CLOCK seconds and goes on
// by one second every 256 times it is asked.
#include <cstdlib>
#include <sys/time.h>
#include <time.h>

static time_t steady_seconds() {
    static const time_t start = [] {
        const char* text = getenv("VOLUME_CLOCK");
        return text ? static_cast<time_t>(atoll(text)) : 0;
    }();
    static unsigned asked = 0;
    return start + asked++ / 256;
}

extern "C" int clock_gettime(clockid_t, timespec* ts) noexcept {
    ts->tv_sec = steady_seconds();
    ts->tv_nsec = 0;
    return 0;
}

extern "C" int gettimeofday(timeval* tv, void*) noexcept {
    tv->tv_sec = steady_seconds();
    tv->tv_usec = 0;
    return 0;
}

extern "C" time_t time(time_t* out) noexcept {
    const time_t now = steady_seconds();
    if (out) *out = now;
    return now;
}
