#include "mount/posix/FuseAnswers.h"

#include "mount/MountedVolume.h"
#include "platform/system/ReadBuffer.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace thntfs {

namespace {

using Node = MountIndex::Node;

constexpr double kForever = 1e9;             // seconds
constexpr double kWhileInDoubt = 1;          // of a record that can't be read at present
constexpr std::size_t kMaxAttribute = 65536; // the system gives no larger one
constexpr std::uint64_t kUnitsASecond = 10'000'000;
constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;
constexpr unsigned kReadsAhead =
    8; // that wait for the medium at a time, besides those that programs wait for

// Places in a folder's list: the first name stands behind "." and "..".
constexpr off_t kSelfPlace = 1;
constexpr off_t kParentPlace = 2;

const FuseTree& TreeOf(fuse_req_t request) {
    return *static_cast<const FuseTree*>(fuse_req_userdata(request));
}

Node NodeOf(fuse_ino_t number) { return static_cast<Node>(number - FUSE_ROOT_ID); }
fuse_ino_t NumberOf(Node node) { return fuse_ino_t{node} + FUSE_ROOT_ID; }

// Nothing is thrown into the library.
template <typename Answer>
void Answered(fuse_req_t request, Answer answer) {
    try {
        answer();
    } catch (const std::exception&) {
        fuse_reply_err(request, ENOMEM);
    }
}

timespec TimeOf(std::uint64_t fileTime) {
    if (fileTime == 0) {
        return {};
    }
    return {.tv_sec = static_cast<std::int64_t>(fileTime / kUnitsASecond) - kSecondsTo1970,
            .tv_nsec = static_cast<long>(fileTime % kUnitsASecond * 100)};
}

// What is known without a look at the medium.
struct stat KindOf(const FuseTree& tree, Node node) {
    struct stat kind {};
    const bool folder = tree.Index.IsFolder(node);
    kind.st_ino = NumberOf(node);
    kind.st_mode = folder ? S_IFDIR | 0555 : S_IFREG | 0444;
    kind.st_nlink = folder ? 1 : tree.Index.NamesOf(node);
    return kind;
}

struct Known {
    struct stat Stat {};
    double Seconds = kForever; ///< that it may be kept for
};

Known KnownOf(const FuseTree& tree, Node node) {
    Known known{.Stat = KindOf(tree, node)};
    const MountedFacts facts = tree.Volume.FactsOf(node);
    known.Seconds = facts.Known || tree.Index.IsFolder(node) ? kForever : kWhileInDoubt;
    known.Stat.st_size =
        static_cast<off_t>(std::min<std::uint64_t>(facts.Size, std::numeric_limits<off_t>::max()));
    known.Stat.st_blocks =
        static_cast<blkcnt_t>(facts.Allocated / 512 + (facts.Allocated % 512 != 0 ? 1 : 0));
    known.Stat.st_atim = TimeOf(facts.Times.Accessed);
    known.Stat.st_mtim = TimeOf(facts.Times.Modified);
    known.Stat.st_ctim = TimeOf(facts.Times.Changed);
    known.Stat.st_uid = tree.User;
    known.Stat.st_gid = tree.Group;
    return known;
}

fuse_entry_param EntryFor(const FuseTree& tree, Node node) {
    const Known known = KnownOf(tree, node);
    fuse_entry_param entry{};
    entry.ino = NumberOf(node);
    entry.attr = known.Stat;
    entry.attr_timeout = known.Seconds;
    entry.entry_timeout = kForever;
    return entry;
}

// ---- the answers

void Begin(void* /*tree*/, fuse_conn_info* connection) {
    connection->want &=
        ~static_cast<unsigned>(FUSE_CAP_SPLICE_READ | FUSE_CAP_SPLICE_WRITE | FUSE_CAP_SPLICE_MOVE);
    connection->max_background = kReadsAhead;
}

void LookUp(fuse_req_t request, fuse_ino_t parent, const char* name) {
    Answered(request, [&] {
        const FuseTree& tree = TreeOf(request);
        const auto found = tree.Index.Find(NodeOf(parent), name);
        fuse_entry_param entry{};
        entry.entry_timeout = kForever; // a name that isn't there will not come
        if (found) {
            entry = EntryFor(tree, tree.Index.TargetOf(*found));
        }
        fuse_reply_entry(request, &entry);
    });
}

void GetStat(fuse_req_t request, fuse_ino_t number, fuse_file_info* /*file*/) {
    Answered(request, [&] {
        const Known known = KnownOf(TreeOf(request), NodeOf(number));
        fuse_reply_attr(request, &known.Stat, known.Seconds);
    });
}

// Folders aren't opened: the system keeps their lists by itself then.
void OpenFolder(fuse_req_t request, fuse_ino_t /*number*/, fuse_file_info* /*file*/) {
    fuse_reply_err(request, ENOSYS);
}

/// Puts names into a list until it is full.
class FolderList {
public:
    FolderList(fuse_req_t request, std::size_t size, bool withFacts)
        : request_(request)
        , tree_(TreeOf(request))
        , buffer_(size)
        , withFacts_(withFacts) {}

    /// `place`: the one behind the name. False where there is no room.
    bool Add(const char* name, Node node, off_t place, bool known) {
        const std::size_t room = buffer_.size() - used_;
        const Node target = tree_.Index.TargetOf(node);
        fuse_entry_param entry{};
        entry.attr = KindOf(tree_, target);
        std::size_t bytes = 0;
        if (withFacts_) {
            bytes = fuse_add_direntry_plus(request_, nullptr, 0, name, nullptr, 0);
            if (bytes > room) {
                return false;
            }
            // A folder will be entered. A file may not be looked at, and would cost a record each.
            if (known && tree_.Index.IsFolder(target)) {
                entry = EntryFor(tree_, target);
            }
            fuse_add_direntry_plus(request_, buffer_.data() + used_, room, name, &entry, place);
        } else {
            bytes = fuse_add_direntry(request_, buffer_.data() + used_, room, name, &entry.attr, place);
        }
        used_ += bytes <= room ? bytes : 0;
        return bytes <= room;
    }

    void Send() { fuse_reply_buf(request_, buffer_.data(), used_); }

private:
    fuse_req_t request_;
    const FuseTree& tree_;
    std::vector<char> buffer_;
    std::size_t used_ = 0;
    bool withFacts_;
};

// The first of a folder's names that comes behind a place; 0 for none.
Node NameBehind(const MountIndex& index, Node folder, off_t place) {
    if (place <= kParentPlace) {
        return index.FirstIn(folder);
    }
    const off_t last = place - kParentPlace;
    const bool inside = last > 0 && static_cast<std::uint64_t>(last) < index.Count();
    return inside && index.ParentOf(static_cast<Node>(last)) == folder ? index.NextOf(static_cast<Node>(last))
                                                                       : 0;
}

void ListFolder(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t place, bool withFacts) {
    Answered(request, [&] {
        const MountIndex& index = TreeOf(request).Index;
        const Node folder = NodeOf(number);
        FolderList list(request, size, withFacts);
        bool room = place >= kSelfPlace || list.Add(".", folder, kSelfPlace, false);
        room = room && (place >= kParentPlace || list.Add("..", index.ParentOf(folder), kParentPlace, false));
        std::string name; // ends with a zero byte
        for (Node node = NameBehind(index, folder, place); node != 0 && room; node = index.NextOf(node)) {
            name = index.NameOf(node);
            room = list.Add(name.c_str(), node, off_t{node} + kParentPlace, true);
        }
        list.Send();
    });
}

void ReadFolder(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t place,
                fuse_file_info* /*file*/) {
    ListFolder(request, number, size, place, false);
}

void ReadFolderPlus(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t place,
                    fuse_file_info* /*file*/) {
    ListFolder(request, number, size, place, true);
}

MountedFile* FileOf(const fuse_file_info* file) {
    // The library keeps numbers. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<MountedFile*>(file->fh);
}

void OpenFile(fuse_req_t request, fuse_ino_t number, fuse_file_info* file) {
    Answered(request, [&] {
        if ((file->flags & O_ACCMODE) != O_RDONLY) {
            fuse_reply_err(request, EROFS);
            return;
        }
        std::unique_ptr<MountedFile> opened = TreeOf(request).Volume.Open(NodeOf(number));
        if (opened == nullptr) {
            fuse_reply_err(request, EIO);
            return;
        }
        file->fh = reinterpret_cast<std::uint64_t>(opened.get());
        file->keep_cache = 1;
        if (fuse_reply_open(request, file) == 0) {
            (void)opened.release(); // until CloseFile
        }
    });
}

void CloseFile(fuse_req_t request, fuse_ino_t /*number*/, fuse_file_info* file) {
    const std::unique_ptr<MountedFile> closed(FileOf(file));
    fuse_reply_err(request, 0);
}

// To the system's page cache a short answer means that the file ends there. Of a read ahead that fails it
// asks again for single pages, so that each page that can be had is. A read past the cache gets what is
// sound.
void ReadFile(fuse_req_t request, fuse_ino_t /*number*/, std::size_t size, off_t offset,
              fuse_file_info* file) {
    Answered(request, [&] {
        ReadBuffer buffer(size);
        const MountedPiece piece =
            TreeOf(request).Volume.Read(*FileOf(file), static_cast<std::uint64_t>(offset), buffer);
        const bool pastCache = (file->flags & O_DIRECT) != 0;
        if (piece.Failed && !(pastCache && piece.Bytes != 0)) {
            fuse_reply_err(request, EIO);
        } else {
            fuse_reply_buf(request, reinterpret_cast<const char*>(buffer.data()), piece.Bytes);
        }
    });
}

void Seek(fuse_req_t request, fuse_ino_t /*number*/, off_t offset, int whence, fuse_file_info* file) {
    Answered(request, [&] {
        const MountedFile& opened = *FileOf(file);
        const auto from = static_cast<std::uint64_t>(offset);
        MountedVolume& volume = TreeOf(request).Volume;
        const std::uint64_t found =
            whence == SEEK_DATA ? volume.NextData(opened, from) : volume.NextHole(opened, from);
        if (offset < 0 || from >= opened.Size || (whence == SEEK_DATA && found >= opened.Size)) {
            fuse_reply_err(request, ENXIO);
        } else {
            fuse_reply_lseek(request, static_cast<off_t>(found));
        }
    });
}

// Programs ask for the size first.
void SendAttribute(fuse_req_t request, const std::string& value, std::size_t room) {
    if (room == 0) {
        fuse_reply_xattr(request, value.size());
    } else if (value.size() > room) {
        fuse_reply_err(request, ERANGE);
    } else {
        fuse_reply_buf(request, value.data(), value.size());
    }
}

void GetAttribute(fuse_req_t request, fuse_ino_t number, const char* name, std::size_t room) {
    Answered(request, [&] {
        std::string value;
        switch (TreeOf(request).Volume.Attribute(NodeOf(number), name, kMaxAttribute, value)) {
        case MountedVolume::Got::Value:
            SendAttribute(request, value, room);
            break;
        case MountedVolume::Got::NoSuch:
            fuse_reply_err(request, ENODATA);
            break;
        case MountedVolume::Got::TooLarge:
            fuse_reply_err(request, E2BIG);
            break;
        case MountedVolume::Got::Failed:
            fuse_reply_err(request, EIO);
        }
    });
}

void ListAttributes(fuse_req_t request, fuse_ino_t number, std::size_t room) {
    Answered(request, [&] {
        std::string names;
        for (const std::string& name : TreeOf(request).Volume.AttributesOf(NodeOf(number))) {
            if (names.size() + name.size() < kMaxAttribute) {
                names.append(name.c_str(), name.size() + 1);
            }
        }
        SendAttribute(request, names, room);
    });
}

} // namespace

const fuse_lowlevel_ops& FuseAnswers() {
    static const fuse_lowlevel_ops kAnswers = [] {
        fuse_lowlevel_ops answers{};
        answers.init = Begin;
        answers.lookup = LookUp;
        answers.getattr = GetStat;
        answers.opendir = OpenFolder;
        answers.readdir = ReadFolder;
        answers.readdirplus = ReadFolderPlus;
        answers.open = OpenFile;
        answers.release = CloseFile;
        answers.read = ReadFile;
        answers.lseek = Seek;
        answers.getxattr = GetAttribute;
        answers.listxattr = ListAttributes;
        return answers;
    }();
    return kAnswers;
}

} // namespace thntfs
