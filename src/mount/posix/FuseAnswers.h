#pragma once

#define FUSE_USE_VERSION 314
#include <fuse3/fuse_lowlevel.h>

namespace thntfs {

class MountedVolume;
class MountIndex;

/// What the answers are made from: the user data of a session.
struct FuseTree {
    const MountIndex& Index;
    MountedVolume& Volume;
    uid_t User;
    gid_t Group;
};

/// The answers to what programs ask of a mounted tree. A node's number is its place in the index and 1.
/// Nothing in a mount changes, so that the system may keep all that it is told.
const fuse_lowlevel_ops& FuseAnswers();

} // namespace thntfs
