// th-ntfs-open-disk: the terminal program starts it to get a disk from the system's disk service.

#include "diskservice/DiskService.h"
#include "platform/media/DiskHelper.h"

#include <QCoreApplication>
#include <cstdio>
#include <string_view>

namespace {

using namespace thntfs;

constexpr int kWrongWords = 2;

bool IsWordOf(std::string_view word, DiskUse use) { return word == WordOf(use); }

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const bool known =
        argc == 3 && (IsWordOf(argv[1], DiskUse::Reading) || IsWordOf(argv[1], DiskUse::WritingOver));
    if (!known || !AwaitDiskRequest()) {
        std::fputs("th-ntfs-cli starts this program to open a disk. It does nothing by itself.\n", stderr);
        return kWrongWords;
    }
    const DiskUse use = IsWordOf(argv[1], DiskUse::Reading) ? DiskUse::Reading : DiskUse::WritingOver;
    return HandOverDisk(OpenByDiskService(argv[2], use, IsDiskAwaited)) ? 0 : 1;
}
