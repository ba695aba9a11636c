#pragma once

#include "platform/system/Bytes.h"

#include <cstddef>
#include <cstdint>

namespace thntfs {

/// True if bytes read as a chain of compressed chunks: header by header, each stepping over its chunk's data,
/// to the end of the bytes or to a header that ends the chain.
bool IsChunkChain(ConstBytes bytes);

/// Decompresses LZNT1, the compression of NTFS (published as [MS-XCA]). A header whose low 12 bits are 0 or 3
/// ends the stream. Never reads beyond `source` nor writes beyond `target`. A chunk that yields less than
/// 4096 bytes isn't padded. Gives the number of bytes put out.
std::size_t DecompressLznt1(ConstBytes source, Bytes target);

/// Where in a chain the chunks end that give its first `outBytes` bytes, in bytes from its start; the whole
/// length where the chain ends before that.
std::size_t ChunksEnd(ConstBytes chain, std::uint64_t outBytes);

} // namespace thntfs
