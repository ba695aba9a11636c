"""A small reader of NTFS volumes inside disk images.

It knows just enough to list every file record, live or deleted, with its path
and to read back its unnamed data: partition tables, boot sector, $MFT run
list, fixups, attribute lists, run lists and LZNT1.  It shares no code with the
program under test.
"""
import hashlib
import itertools
import json
import struct

FIRST_USER_RECORD = 24
ROOT_RECORD = 5
DOS_NAMESPACE = 2
ATTR_LIST, FILE_NAME, DATA = 0x20, 0x30, 0x80
FLAG_COMPRESSED, FLAG_SPARSE = 0x00FF, 0x8000
RECORD_MASK = (1 << 48) - 1
EXTENDED_TYPES = (0x05, 0x0F)


class Damaged(Exception):
    """The bytes can't be what they should be."""


def u16(b, at):
    return struct.unpack_from('<H', b, at)[0]


def u32(b, at):
    return struct.unpack_from('<I', b, at)[0]


def u64(b, at):
    return struct.unpack_from('<Q', b, at)[0]


# ---------------------------------------------------------------- partitions

class Partition:
    def __init__(self, start, sectors, kind, sector_size, table):
        self.start, self.sectors, self.type = start, sectors, kind
        self.sector_size, self.table = sector_size, table


def table_entries(image, sector, sector_size):
    at = sector * sector_size
    if u16(image, at + 510) != 0xAA55:
        raise Damaged('no table mark in sector %d' % sector)
    for i in range(4):
        entry = image[at + 446 + 16 * i:at + 462 + 16 * i]
        if entry[4]:
            yield entry[4], u32(entry, 8), u32(entry, 12)


def partitions(image):
    """Primaries in table order, then the logical volumes in chain order."""
    size = u16(image, 444) or 512
    found, extended = [], None
    for kind, start, sectors in table_entries(image, 0, size):
        if kind in EXTENDED_TYPES:
            extended = start
        else:
            found.append(Partition(start, sectors, kind, size, 'primary'))
    table = extended
    while table is not None:
        following = None
        for kind, start, sectors in table_entries(image, table, size):
            if kind in EXTENDED_TYPES:
                following = extended + start
            else:
                found.append(Partition(table + start, sectors, kind, size, 'logical'))
        table = following
    return found


# ---------------------------------------------------------------- attributes

def parse_runs(b, at, end):
    """[(length, lcn or None for a hole)] of a mapping pairs array."""
    runs, lcn = [], 0
    while at < end and b[at]:
        n_len, n_lcn = b[at] & 15, b[at] >> 4
        at += 1
        length = int.from_bytes(b[at:at + n_len], 'little')
        at += n_len
        if not length:
            raise Damaged('empty run')
        if n_lcn:
            lcn += int.from_bytes(b[at:at + n_lcn], 'little', signed=True)
            at += n_lcn
        runs.append((length, lcn if n_lcn else None))
    return runs


class Attribute:
    def __init__(self, b, at, record):
        self.record = record
        self.type, size = u32(b, at), u32(b, at + 4)
        self.resident = not b[at + 8]
        name_at = at + u16(b, at + 10)
        self.name = b[name_at:name_at + 2 * b[at + 9]].decode('utf-16le')
        self.flags = u16(b, at + 12)
        if self.resident:
            value_at = at + u16(b, at + 20)
            self.size = u32(b, at + 16)
            self.value = b[value_at:value_at + self.size]
            self.lowest_vcn = 0
            return
        self.lowest_vcn = u64(b, at + 16)
        self.unit_shift = u16(b, at + 34)
        self.allocated, self.size, self.initialized = struct.unpack_from('<QQQ', b, at + 40)
        self.runs = parse_runs(b, at + u16(b, at + 32), at + size)


class Stream:
    """The pieces of one attribute put together."""

    def __init__(self, pieces):
        pieces = sorted(pieces, key=lambda a: a.lowest_vcn)
        head = pieces[0]
        self.pieces, self.resident = pieces, head.resident
        self.flags, self.size = head.flags, head.size
        if self.resident:
            self.value = head.value
            return
        self.unit = 1 << head.unit_shift if head.unit_shift else 0
        self.initialized = head.initialized
        self.runs, vcn = [], 0
        for piece in pieces:
            if piece.lowest_vcn != vcn:
                raise Damaged('gap in the run list')
            self.runs += piece.runs
            vcn += sum(n for n, _ in piece.runs)

    @property
    def compressed(self):
        return bool(self.flags & FLAG_COMPRESSED) and not self.resident

    @property
    def holes(self):
        return not self.resident and any(lcn is None for _, lcn in self.runs)

    @property
    def fragments(self):
        if self.resident:
            return 0
        count, expected = 0, None
        for length, lcn in self.runs:
            if lcn is None:
                continue
            count += lcn != expected
            expected = lcn + length
        return count


class Name:
    def __init__(self, value):
        self.parent = u64(value, 0) & RECORD_MASK
        self.namespace = value[65]
        self.text = value[66:66 + 2 * value[64]].decode('utf-16le')


class Record:
    def __init__(self, number, b):
        self.number, self.bytes = number, b
        self.sequence, self.flags = u16(b, 16), u16(b, 22)
        self.base = u64(b, 32) & RECORD_MASK
        self.live, self.folder = bool(self.flags & 1), bool(self.flags & 2)
        self.own = list(self.walk())

    def walk(self):
        at, end = u16(self.bytes, 20), min(u32(self.bytes, 24), len(self.bytes))
        while at + 8 <= end and u32(self.bytes, at) != 0xFFFFFFFF:
            if u32(self.bytes, at + 4) < 16:
                raise Damaged('attribute of no length in record %d' % self.number)
            yield Attribute(self.bytes, at, self.number)
            at += u32(self.bytes, at + 4)


# -------------------------------------------------------------------- LZNT1

def unpack_chunk(b, at, end, out):
    start = len(out)
    while at < end:
        tags = b[at]
        at += 1
        for bit in range(8):
            if at >= end:
                return
            if not tags >> bit & 1:
                out.append(b[at])
                at += 1
                continue
            pair, done = u16(b, at), len(out) - start
            at += 2
            shift = 12
            while done > 16 and (done - 1) >> (16 - shift):
                shift -= 1
            distance, length = (pair >> shift) + 1, (pair & ((1 << shift) - 1)) + 3
            if distance > done:
                raise Damaged('back reference before the chunk')
            for _ in range(length):
                out.append(out[-distance])


def unpack_lznt1(b, limit):
    out, at = bytearray(), 0
    while at + 2 <= len(b) and len(out) < limit:
        head = u16(b, at)
        if not head:
            break
        end = at + 3 + (head & 0xFFF)
        if head & 0x8000:
            unpack_chunk(b, at + 2, end, out)
        else:
            out += b[at + 2:end]
        at = end
        if len(out) % 4096 and at + 2 <= len(b) and u16(b, at):
            out += bytes(-len(out) % 4096)
    return out


# ------------------------------------------------------------------- volumes

class Volume:
    def __init__(self, image, offset=0):
        self.image, self.offset = image, offset
        boot = image[offset:offset + 512]
        if boot[3:11] != b'NTFS    ':
            raise Damaged('no NTFS boot sector')
        self.bytes_per_sector = u16(boot, 11)
        self.sectors_per_cluster = boot[13] if boot[13] <= 128 else 1 << (256 - boot[13])
        self.cluster = self.bytes_per_sector * self.sectors_per_cluster
        self.total_sectors = u64(boot, 40)
        self.mft_lcn, self.mirror_lcn, self.serial = u64(boot, 48), u64(boot, 56), u64(boot, 72)
        self.record_size = self.block_size(boot[64])
        self.index_size = self.block_size(boot[68])
        self.load_mft()

    def block_size(self, code):
        return 1 << (256 - code) if code > 127 else code * self.cluster

    def load_mft(self):
        """Each piece of $MFT's run list may lie in the part read before it."""
        start = self.offset + self.mft_lcn * self.cluster
        first = self.parse_record(0, self.image[start:start + self.record_size])
        pieces = [a for a in first.own if a.type == DATA and not a.name]
        self.mft = Stream(pieces)
        for kind, vcn, number, name in self.list_entries(first):
            if kind == DATA and not name and number != 0:
                extra = self.record(number)
                pieces += [a for a in extra.own if a.type == DATA and a.lowest_vcn == vcn]
                size, self.mft = self.mft.size, Stream(pieces)
                self.mft.size = size
        self.record_count = self.mft.size // self.record_size

    def parse_record(self, number, raw):
        if raw[:4] != b'FILE':
            return None
        b = bytearray(raw)
        at, count = u16(b, 4), u16(b, 6)
        for i in range(1, count):
            end = 512 * i
            if b[end - 2:end] != b[at:at + 2]:
                raise Damaged('fixup of record %d' % number)
            b[end - 2:end] = b[at + 2 * i:at + 2 * i + 2]
        return Record(number, bytes(b))

    def pieces_of(self, stream, start, length):
        """Raw bytes [start, start + length) of a stream that has no holes."""
        out = bytearray()
        while len(out) < length:
            at, here = self.place(stream, start + len(out))
            out += self.image[at:at + min(here, length - len(out))]
        return bytes(out)

    def place(self, stream, at):
        """Where in the image byte `at` of a stream lies, and how far it goes on there."""
        vcn = 0
        for run, lcn in stream.runs:
            if at < (vcn + run) * self.cluster:
                return self.offset + lcn * self.cluster + at - vcn * self.cluster, \
                    (vcn + run) * self.cluster - at
            vcn += run
        raise Damaged('byte %d lies outside the run list' % at)

    def overwrite(self, stream, start, data):
        """Writes over bytes of a stream where they lie, in an image that can be written."""
        done = 0
        while done < len(data):
            at, here = self.place(stream, start + done)
            piece = bytes(data[done:done + here])
            self.image[at:at + len(piece)] = piece
            done += len(piece)

    def record(self, number):
        raw = self.pieces_of(self.mft, number * self.record_size, self.record_size)
        return self.parse_record(number, raw)

    def list_entries(self, record):
        """(type, lowest VCN, record number, name) of the attribute list."""
        for a in record.own:
            if a.type != ATTR_LIST:
                continue
            b = a.value if a.resident else b''.join(self.content(Stream([a])))
            at = 0
            while at + 26 <= len(b) and u16(b, at + 4):
                name_at = at + b[at + 7]
                name = b[name_at:name_at + 2 * b[at + 6]].decode('utf-16le')
                yield u32(b, at), u64(b, at + 8), u64(b, at + 16) & RECORD_MASK, name
                at += u16(b, at + 4)

    def attributes(self, record):
        """A record's attributes, extension records included."""
        found, seen = list(record.own), {record.number}
        for _, _, number, _ in self.list_entries(record):
            if number in seen:
                continue
            seen.add(number)
            extra = self.record(number)
            if extra is None or extra.base != record.number:
                raise Damaged('record %d has lost extension %d' % (record.number, number))
            found += extra.own
        return found

    def clusters(self, lcn, count):
        at = self.offset + lcn * self.cluster
        return self.image[at:at + count * self.cluster]

    def content(self, stream):
        """The bytes of a stream, piece by piece."""
        if stream.resident:
            yield stream.value
            return
        left = stream.size
        pieces = self.units(stream) if stream.compressed else self.plain(stream)
        done = 0
        for piece in pieces:
            if done + len(piece) > stream.initialized:
                piece = piece[:max(0, stream.initialized - done)].ljust(len(piece), b'\0')
            done += len(piece)
            yield piece[:left]
            left -= len(piece[:left])
        if left:
            raise Damaged('%d bytes missing at the end' % left)

    def plain(self, stream):
        step = max(1, (1 << 20) // self.cluster)
        for length, lcn in stream.runs:
            for at in range(0, length, step):
                n = min(step, length - at)
                yield bytes(n * self.cluster) if lcn is None else self.clusters(lcn + at, n)

    def units(self, stream):
        """The decompressed units, the last one as long as it comes out."""
        size = stream.unit * self.cluster
        left = stream.size
        for raw, allocated in self.raw_units(stream):
            if allocated == 0:
                piece = bytes(size)
            elif allocated == stream.unit:
                piece = raw
            else:
                piece = bytes(unpack_lznt1(raw, size))
                if left > len(piece):
                    piece = piece.ljust(min(size, left), b'\0')
            left -= len(piece)
            yield piece

    def raw_units(self, stream):
        unit, part, filled, allocated = stream.unit, [], 0, 0
        for length, lcn in stream.runs:
            while length:
                n = min(length, unit - filled)
                if lcn is not None:
                    part.append(self.clusters(lcn, n))
                    lcn, allocated = lcn + n, allocated + n
                filled, length = filled + n, length - n
                if filled == unit:
                    yield b''.join(part), allocated
                    part, filled, allocated = [], 0, 0
        if filled:
            yield b''.join(part), allocated

    def overlong_tail(self, stream):
        """Whether the last unit gives more than the file's size by itself."""
        if not stream.compressed or not stream.size:
            return False
        if sum(n for n, _ in stream.runs) % stream.unit:
            return True
        size = stream.unit * self.cluster
        last = (stream.size - 1) // size
        for i, (raw, allocated) in enumerate(self.raw_units(stream)):
            if i == last:
                if allocated in (0, stream.unit):
                    return stream.size % size != 0
                return len(unpack_lznt1(raw, size)) > stream.size - last * size
        return False


# ------------------------------------------------------------------ listings

class Found:
    """One file or folder as its record tells it."""

    def __init__(self, volume, record):
        self.record, self.live, self.folder = record, record.live, record.folder
        self.trouble, self.sha256, self.size, self.stream = None, '-', 0, None
        try:
            self.attributes = volume.attributes(record)
        except Damaged as e:
            self.attributes, self.trouble = record.own, str(e)
        own = [a.value for a in record.own if a.type == FILE_NAME]
        every = [a.value for a in self.attributes if a.type == FILE_NAME]
        self.names = [Name(v) for v in every]
        self.plain = [n for n in self.names if n.namespace != DOS_NAMESPACE]
        shown = [n for n in map(Name, own) if n.namespace != DOS_NAMESPACE]
        self.last = shown[-1] if shown else None
        if not self.folder:
            self.read(volume)

    def read(self, volume):
        pieces = [a for a in self.attributes if a.type == DATA and not a.name]
        try:
            if not pieces:
                raise Damaged('no unnamed data')
            self.stream = Stream(pieces)
            self.size = self.stream.size
            digest = hashlib.sha256()
            for piece in volume.content(self.stream):
                digest.update(piece)
            self.sha256 = digest.hexdigest()
        except (Damaged, IndexError, struct.error) as e:
            self.trouble, self.sha256 = str(e), '?'


class Listing:
    """Every user's file and folder of a volume, by path."""

    def __init__(self, volume):
        self.volume, self.parents, self.by_path = volume, {}, {}
        found = []
        for number in range(ROOT_RECORD, volume.record_count):
            record = volume.record(number)
            if record is None or record.base or not record.own:
                continue
            item = Found(volume, record)
            if item.plain:
                self.parents[number] = (item.last or item.plain[-1], item.folder)
                found.append(item)
        for item in found:
            if item.record.number >= FIRST_USER_RECORD:
                self.add(item)

    def add(self, item):
        for name in item.plain:
            path = self.path(name)
            if not path.startswith('/$Extend/'):
                self.by_path.setdefault(path, []).append(item)

    def path(self, name):
        parts = [name.text]
        while name.parent != ROOT_RECORD:
            name, folder = self.parents.get(name.parent, (None, False))
            if not folder or len(parts) > 300:
                return '?/' + '/'.join(reversed(parts))
            parts.append(name.text)
        return '/' + '/'.join(reversed(parts))

    def find(self, row):
        """The item a manifest row means: the intact one if there are several."""
        items = [i for i in self.candidates(row)
                 if i.live == row.live and i.folder == row.folder]
        intact = [i for i in items if row.matches(i)]
        return (intact or items or [None])[0]

    def candidates(self, row):
        if 'orphan' not in row.notes:
            return self.by_path.get(row.path, [])
        name = row.path.rsplit('/', 1)[1]
        return [i for items in self.by_path.values() for i in items
                if any(n.text == name for n in i.plain)]


# ------------------------------------------------------- what is to come back

def kept(volume, stream):
    """The bytes of a stream that recovering it gives: without its holes, and with all that the last unit gives."""
    if stream.resident:
        return stream.value
    if not stream.compressed:
        runs = [volume.clusters(lcn, length) for length, lcn in stream.runs if lcn is not None]
        return b''.join(runs)[:stream.size]
    out, size = [], stream.unit * volume.cluster
    whole = sum(length for length, _ in stream.runs) // stream.unit  # what no hole closes is left out
    for raw, allocated in itertools.islice(volume.raw_units(stream), whole):
        out.append(raw if allocated in (0, stream.unit) else bytes(unpack_lznt1(raw[:chunks_end(raw)], size)))
    return b''.join(out)


def chunks_end(raw):
    """Where the chunks of a unit end: a chunk of four bytes, as zeros take, ends them too."""
    at = 0
    while at + 2 <= len(raw) and u16(raw, at) & 0xFFF not in (0, 3):
        at += 3 + (u16(raw, at) & 0xFFF)
    return at


def saved(volume, item):
    """Size and SHA-256 of the file that recovering gives."""
    data = kept(volume, item.stream)
    return {'size': len(data), 'sha256': hashlib.sha256(data).hexdigest()}


def is_listed(row, item, listing):
    """Whether a row's name can be found: of several names of a file it is the last, as the records are read."""
    if item is None or row.notes & {'gone', 'unlinked'}:
        return False
    return row.folder or 'orphan' in row.notes or listing.path(item.plain[-1]) == row.path


# ----------------------------------------------------------------- manifests

class Row:
    """A file or folder that was ever made, and once the volume is finished what is to come back of it."""

    def __init__(self, path, live, folder, size, sha256, notes=(), listed=False, saved=()):
        self.path, self.live, self.folder = path, live, folder
        self.size, self.sha256, self.notes = size, sha256, set(notes)
        self.listed = listed
        self.saved = {'size': size, 'sha256': sha256} if saved == () else saved

    def matches(self, item):
        return item.folder == self.folder and \
            (item.folder or (item.size == self.size and item.sha256 == self.sha256))

    def expect(self, listing):
        item = listing.find(self)
        self.listed = is_listed(self, item, listing)
        known = self.listed and not self.folder and 'reused' not in self.notes
        self.saved = saved(listing.volume, item) if known else None

    def line(self):
        values = {**vars(self), 'notes': sorted(self.notes)}
        if self.saved == {'size': self.size, 'sha256': self.sha256}:
            del values['saved']
        return json.dumps(values, ensure_ascii=False)


def described(image):
    """The partitions of an image in the words of the program's JSON."""
    parts = partitions(image)
    return [description(i, part, Volume(image, part.start * part.sector_size)) for i, part in enumerate(parts, 1)]


def description(number, part, volume):
    return {'number': number, 'startSector': part.start, 'totalSectors': part.sectors,
            'bytesPerSector': volume.bytes_per_sector, 'sectorsPerCluster': volume.sectors_per_cluster,
            'clusterBytes': volume.cluster, 'fileRecordBytes': volume.record_size,
            'indexBlockBytes': volume.index_size,
            'mftSector': part.start + volume.mft_lcn * volume.sectors_per_cluster,
            'mftCluster': volume.mft_lcn, 'mftMirrCluster': volume.mirror_lcn,
            'serial': '%016X' % volume.serial, 'evidence': 0}


def write_manifest(path, descriptions, tables):
    """One line for each partition and each row."""
    lists = [',\n'.join(row.line() for row in rows) for rows in tables]
    with open(path, 'w', encoding='utf-8', newline='\n') as f:
        f.write('{"partitions": [\n%s\n],\n"volumes": [[\n%s\n]]}\n' % (
            ',\n'.join(map(json.dumps, descriptions)), '\n],[\n'.join(lists)))


def read_manifest(path):
    with open(path, encoding='utf-8') as f:
        manifest = json.load(f)
    return manifest['partitions'], [[Row(**row) for row in rows] for rows in manifest['volumes']]
