#include "platform/system/Libraries.h"

#include <archive.h>
#include <openssl/opensslv.h>
#include <zlib.h>

#ifdef THNTFS_WIMLIB
#include <wimlib.h>
#endif
#ifdef THNTFS_LIBEWF
#include <libewf.h>
#else
#define LIBEWF_VERSION_STRING ""
#endif
#ifdef THNTFS_LIBVHDI
#include <libvhdi.h>
#else
#define LIBVHDI_VERSION_STRING ""
#endif
#ifdef THNTFS_LIBVMDK
#include <libvmdk.h>
#else
#define LIBVMDK_VERSION_STRING ""
#endif
#ifdef THNTFS_LIBQCOW
#include <libqcow.h>
#else
#define LIBQCOW_VERSION_STRING ""
#endif

#ifdef THNTFS_FUSE
#define FUSE_USE_VERSION 31
#include <fuse3/fuse_lowlevel.h>
#endif

namespace thntfs {

namespace {

// Names and versions of those that are there, or names of those that are missing, with commas between them.
std::string ListOf(const std::vector<Library>& libraries, bool there) {
    std::string list;
    for (const Library& library : libraries) {
        if (library.Version.empty() != there) {
            list += (list.empty() ? "" : ", ") + library.Name + (there ? " " + library.Version : "");
        }
    }
    return list;
}

} // namespace

std::vector<Library> CoreLibraries() {
    return {
        {"OpenSSL", OPENSSL_VERSION_STR},
        {"zlib", ZLIB_VERSION},
        {"libarchive", ARCHIVE_VERSION_ONLY_STRING},
#ifdef THNTFS_WIMLIB
        {"wimlib", std::to_string(WIMLIB_MAJOR_VERSION) + "." + std::to_string(WIMLIB_MINOR_VERSION) + "." +
                       std::to_string(WIMLIB_PATCH_VERSION)},
#else
        {"wimlib", ""},
#endif
        {"libewf", LIBEWF_VERSION_STRING},
        {"libvhdi", LIBVHDI_VERSION_STRING},
        {"libvmdk", LIBVMDK_VERSION_STRING},
        {"libqcow", LIBQCOW_VERSION_STRING},
#ifdef THNTFS_FUSE
        {"libfuse", std::to_string(FUSE_MAJOR_VERSION) + "." + std::to_string(FUSE_MINOR_VERSION)},
#else
        {"libfuse", ""},
#endif
    };
}

std::string ProductVersion() { return THNTFS_VERSION; }

std::string VersionText(const std::vector<Library>& ofProgram) {
    std::vector<Library> libraries = CoreLibraries();
    libraries.insert(libraries.end(), ofProgram.begin(), ofProgram.end());
    std::string text =
        "Tarnholt Volume Salvage (NTFS) " + ProductVersion() + "\nBuilt with " + ListOf(libraries, true);
    if (const std::string missing = ListOf(libraries, false); !missing.empty()) {
        text += "\nBuilt without " + missing;
    }
    return text;
}

} // namespace thntfs
