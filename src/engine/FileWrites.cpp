#include "engine/FileWrites.h"

#include "engine/SectorReader.h"
#include "platform/files/File.h"

namespace thntfs {

bool IsFailedWrite(ErrorCode code) { return code != kErrorNone && code != kErrorInvalidUserBuffer; }

void RaiseFailedWrite(ErrorCode code) {
    if (IsFailedWrite(code)) {
        RaiseFatal(code);
    }
}

int WriteCatalogue(File& file, ConstBytes bytes) {
    RaiseFailedWrite(file.Write(bytes));
    return 1;
}

} // namespace thntfs
