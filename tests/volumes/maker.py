"""Makes NTFS volumes with mkntfs and ntfs-3g and keeps book of what is on them."""
import contextlib
import hashlib
import mmap
import os
import random
import struct
import subprocess
import tempfile
import time
import zlib

import ntfs_reader as ntfs
import relayout
from relayout import cut_short, drop_last_hole, list_in_base

HERE = os.path.dirname(os.path.abspath(__file__))
COMPRESSED_ATTRIB = 0x800
BITMAP_RECORD = 6
FIRST_CLOCK = 1683187200        # 4 May 2023; each volume starts some days later, told by its label

work_dir = None
clock_library = None
volumes_made = 0


@contextlib.contextmanager
def workshop():
    """A scratch folder with the preloaded clock in it."""
    global work_dir, clock_library
    with tempfile.TemporaryDirectory(prefix='make-volumes.') as folder:
        work_dir, clock_library = folder, os.path.join(folder, 'steady-clock.so')
        subprocess.run(['g++', '-shared', '-fPIC', '-O1', '-o', clock_library,
                        os.path.join(HERE, 'steady-clock.cc')], check=True)
        yield


# ------------------------------------------------------------------- content

SUBJECTS = ['The committee', 'Our supplier', 'My aunt', 'The north archive', 'A neighbour',
            'The ferry', 'Room 14', 'The auditor', 'This season', 'Each branch office',
            'The old printer', 'Her letter', 'The river gauge', 'A second copy', 'Nobody', 'The choir']
VERBS = ['has confirmed', 'will replace', 'cannot find', 'asked for', 'sent back', 'measured',
         'promised', 'lost', 'repaired', 'counted', 'moved', 'painted', 'described', 'ordered',
         'forgot', 'signed']
OBJECTS = ['the spring timetable.', 'forty chairs and a table.', 'the minutes of March.',
           'all of the invoices.', 'a crate of apples.', 'the broken window.', 'two maps.',
           'the reading lamp.', 'the key to the cellar.', 'a new contract.', 'the last page.',
           'some photographs.', 'the blue bicycle.', 'enough paper.', 'a better answer.',
           'the whole collection.']


def text(key, size):
    """Readable text of exactly this many bytes, a different one for every key."""
    rng = random.Random('text ' + key)
    parts, length = [key.encode() + b'\n'], len(key.encode()) + 1
    while length < size:
        line = ' '.join(map(rng.choice, (SUBJECTS, VERBS, OBJECTS))).encode() + b'\n'
        parts.append(line)
        length += len(line)
    return b''.join(parts)[:size]


def ruled(key, size, block=512):
    """Blocks that say which file and which place they belong to; packs very well."""
    name = os.path.basename(key)
    blocks = ((('%s %07d ' % (name, i)).encode() * (block // 8))[:block - 1] + b'\n'
              for i in range(-(-size // block)))
    return b''.join(blocks)[:size]


NOISE = random.Random('noise').randbytes(1 << 17)


def noise(start, size):
    """Incompressible bytes, cut from one pool so that the packed images stay small."""
    doubled = NOISE[start % len(NOISE):] + NOISE * (size // len(NOISE) + 1)
    return doubled[:size]


# ------------------------------------------------------------------- volumes

class Volume:
    """One NTFS volume in a file of its own, and the rows of its manifest."""

    def __init__(self, size, cluster=4096, sector=512, start=2048, label='Volume', records_4k=False):
        global volumes_made
        self.size, self.start, self.label = size, start, label
        self.cluster_bytes = cluster
        self.image = os.path.join(work_dir, 'volume%02d' % volumes_made)
        self.root = self.image + '.mnt'
        self.clock = FIRST_CLOCK + zlib.crc32(label.encode()) % 400 * 86400
        volumes_made += 1
        self.rows, self.live, self.driver = [], {}, None
        self.format(cluster, 4096 if records_4k else sector)
        if records_4k:
            self.claim_small_sectors()

    def __enter__(self):
        return self.mount('noatime,compression')

    def mount(self, options):
        os.makedirs(self.root, exist_ok=True)
        self.driver = subprocess.Popen(
            ['ntfs-3g', '-o', 'no_detach,' + options, self.image, self.root],
            env=self.environment(), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for _ in range(600):
            if os.path.ismount(self.root):
                return self
            time.sleep(0.05)
        raise RuntimeError('ntfs-3g does not mount ' + self.label)

    def __exit__(self, *_):
        subprocess.run(['umount', self.root], check=True)
        if self.driver.wait():
            raise RuntimeError('ntfs-3g failed on ' + self.label)

    def environment(self):
        self.clock += 86400         # every mount happens on another day
        return dict(os.environ, LC_ALL='C.UTF-8', LD_PRELOAD=clock_library,
                    VOLUME_CLOCK=str(self.clock))

    def format(self, cluster, sector):
        with open(self.image, 'wb') as f:
            f.truncate(self.size)
        subprocess.run(['mkntfs', '-F', '-Q', '-q', '-c', str(cluster), '-s', str(sector),
                        '-p', str(self.start), '-H', '255', '-S', '63', '-L', self.label, self.image],
                       check=True, env=self.environment(),
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def claim_small_sectors(self):
        """Turns a volume of 4096-byte sectors into one of 512-byte sectors.

        mkntfs ties the size of file records to that of sectors.  The boot
        sector alone tells sectors, so records of 4096 bytes stay behind.
        """
        with open(self.image, 'r+b') as f:
            boot = bytearray(f.read(512))
            sectors = self.size // 512 - 1
            per_cluster = boot[13] * 8
            struct.pack_into('<HB', boot, 11, 512, per_cluster)
            struct.pack_into('<Q', boot, 40, sectors)
            struct.pack_into('<I', boot, 28, self.start)
            f.seek(0)
            f.write(boot)
            f.seek(sectors * 512)
            f.write(boot)

    # Book-keeping ----------------------------------------------------------

    def real(self, path):
        return self.root + path

    def enter(self, path, kind, data=b'', sha256=None, size=None):
        digest = None if kind == 'folder' else sha256 or hashlib.sha256(data).hexdigest()
        row = ntfs.Row(path, True, kind == 'folder', len(data) if size is None else size, digest)
        self.rows.append(row)
        self.live[path] = row
        return row

    def strike(self, path, *notes):
        row = self.live.pop(path)
        row.live = False
        row.notes |= set(notes)

    # Making ----------------------------------------------------------------

    def folder(self, path):
        if path != '/' and path not in self.live:
            self.folder(os.path.dirname(path))
            os.mkdir(self.real(path))
            self.enter(path, 'folder')
        return path

    def file(self, path, data, step=1 << 20):
        self.folder(os.path.dirname(path))
        with open(self.real(path), 'xb', buffering=0) as f:
            for at in range(0, len(data), step):
                f.write(data[at:at + step])
        self.enter(path, 'file', data)

    def texts(self, sizes):
        for path, size in sizes.items():
            self.file(path, text(path, size))

    def sparse(self, path, size, islands):
        """A file of `size` bytes with data only at the given places."""
        self.folder(os.path.dirname(path))
        with open(self.real(path), 'xb', buffering=0) as f:
            f.truncate(size)
            for at, data in sorted(islands.items()):
                f.seek(at)
                f.write(data)
        self.enter(path, 'file', sha256=sparse_digest(size, islands), size=size)

    def link(self, old, new):
        self.folder(os.path.dirname(new))
        os.link(self.real(old), self.real(new))
        row = self.live[old]
        twin = self.enter(new, 'file', sha256=row.sha256, size=row.size)
        row.notes.add('hardlink')
        twin.notes.add('hardlink')

    def rename(self, old, new):
        os.rename(self.real(old), self.real(new))
        for path in [p for p in self.live if p == old or p.startswith(old + '/')]:
            row = self.live.pop(path)
            row.path = new + path[len(old):]
            self.live[row.path] = row

    def dos_name(self, path, name):
        os.setxattr(self.real(path), 'system.ntfs_dos_name', name.encode())

    def dated(self, path, created, changed):
        """Sets when a file was made and last written, in seconds since 1970."""
        ticks = (created + 11644473600) * 10 ** 7
        os.setxattr(self.real(path), 'system.ntfs_crtime_be', ticks.to_bytes(8, 'big'))
        os.utime(self.real(path), (changed, changed))

    def stream(self, path, name, data):
        os.setxattr(self.real(path), 'user.' + name, data)

    def compress_inside(self, folder):
        """Files made in this folder from now on are compressed."""
        self.folder(folder)
        key = 'system.ntfs_attrib_be'
        flags = int.from_bytes(os.getxattr(self.real(folder), key), 'big')
        os.setxattr(self.real(folder), key, (flags | COMPRESSED_ATTRIB).to_bytes(4, 'big'))

    # Deleting --------------------------------------------------------------

    def delete(self, *paths):
        for path in paths:
            row = self.live[path]
            os.unlink(self.real(path)) if not row.folder else os.rmdir(self.real(path))
            self.strike(path)

    def delete_tree(self, path):
        inside = [p for p in self.live if p.startswith(path + '/')]
        self.delete(*sorted(inside, key=lambda p: (-p.count('/'), p)), path)

    def unlink_name(self, path):
        """Takes one of several names away; the file itself stays."""
        os.unlink(self.real(path))
        self.strike(path, 'unlinked')

    def delete_with_all_names(self, paths):
        """Deletes files and folders so that their records keep every name. Not while mounted.

        ntfs-3g takes the names out one by one, so at most the last is left, and
        none if there is an attribute list.  Here the records are put back as
        they were, with the in-use mark taken away, the next sequence number and
        no links.
        """
        with self:
            numbers = sorted({os.stat(self.real(p)).st_ino for p in paths})
        with self.opened() as volume:
            saved = [r for n in numbers for r in raw_records(volume, n)]
        with self:
            self.delete(*paths)
        for row in self.rows:
            if row.path in paths:
                row.notes.add('patched')
        with self.opened() as volume:
            for number, raw in saved:
                if volume.record(number).live:
                    raise RuntimeError('record %d is taken again' % number)
                raw = bytearray(raw)
                struct.pack_into('<HH', raw, 16, ntfs.u16(raw, 16) + 1, 0)
                struct.pack_into('<H', raw, 22, ntfs.u16(raw, 22) & ~1)
                volume.overwrite(volume.mft, number * volume.record_size, raw)

    # Places ----------------------------------------------------------------

    @contextlib.contextmanager
    def opened(self):
        """The volume's own bytes, to read and to write. Not while mounted."""
        with open(self.image, 'r+b') as f, contextlib.closing(mmap.mmap(f.fileno(), 0)) as image:
            yield ntfs.Volume(image)

    @contextlib.contextmanager
    def only_free(self, wanted):
        """Meanwhile, of the free clusters only those with wanted(lcn) can be taken.

        The others are marked in $Bitmap, and the marks taken away afterwards.
        So files break into just the pieces asked for.
        """
        with self.opened() as volume:
            bitmap, bits = bitmap_of(volume)
            held = [n for n in range(len(bits) * 8)
                    if not bits[n >> 3] >> (n & 7) & 1 and not wanted(n)]
            for n in held:
                bits[n >> 3] |= 1 << (n & 7)
            volume.overwrite(bitmap, 0, bits)
        yield
        with self.opened() as volume:
            bitmap, bits = bitmap_of(volume)
            for n in held:
                bits[n >> 3] &= ~(1 << (n & 7))
            volume.overwrite(bitmap, 0, bits)

    def record_number(self, path):
        with self:
            return os.stat(self.real(path)).st_ino

    def bring_list_in(self, path):
        """Makes the attribute list of a fragmented file resident. Not while mounted."""
        number = self.record_number(path)
        with self.opened() as volume:
            runs = list_in_base(volume, number)
            bitmap, bits = bitmap_of(volume)
            for length, lcn in runs:
                for n in range(lcn, lcn + length):
                    bits[n >> 3] &= ~(1 << (n & 7))
            volume.overwrite(bitmap, 0, bits)
        self.live[path].notes.add('patched')
        with self:
            self.compare(path)

    def cut_short(self, path, data):
        """Makes a compressed file hold just `data`, though its last unit goes on."""
        number, row = self.record_number(path), self.live[path]
        with self.opened() as volume:
            cut_short(volume, number, len(data))
        row.size, row.sha256 = len(data), hashlib.sha256(data).hexdigest()
        row.notes.add('patched')
        with self:
            self.compare(path)

    def drop_last_hole(self, path):
        """For files to be deleted next: the driver does not read them so."""
        number = self.record_number(path)
        with self.opened() as volume:
            drop_last_hole(volume, number)
        self.live[path].notes |= {'patched', 'open-end'}

    def compare(self, path):
        """Has the driver read a file back."""
        with open(self.real(path), 'rb') as f:
            if hashlib.file_digest(f, 'sha256').hexdigest() != self.live[path].sha256:
                raise RuntimeError('the driver reads %s differently' % path)

    def settle_table(self):
        """Makes record 0 what formatters and drivers elsewhere make it. Not while mounted."""
        with self.opened() as volume:
            moved = relayout.name_in_table_record(volume)
            relayout.date_table_record(volume)
            relayout.mirror_table_record(volume)
        with self.opened() as volume:
            relayout.check_table_record(volume)
        if moved:
            self.compare_all()

    def compare_all(self):
        """Has the driver read all files back, and change nothing."""
        self.mount('ro')
        try:
            for path in [p for p, row in self.live.items() if not row.folder]:
                self.compare(path)
        finally:
            self.__exit__()

    def clusters_of(self, path):
        number = self.record_number(path)
        with self.opened() as volume:
            runs = ntfs.Found(volume, volume.record(number)).stream.runs
        return {lcn + i for length, lcn in runs for i in range(length)}

    # Looking back ----------------------------------------------------------

    def annotate(self):
        """Adds to every row what the finished volume shows of its file, and what is to come back of it."""
        with self.opened() as volume:
            listing = ntfs.Listing(volume)
            for row in self.rows:
                annotate(row, listing)
                row.expect(listing)


def bitmap_of(volume):
    attributes = volume.record(BITMAP_RECORD).own
    bitmap = ntfs.Stream([a for a in attributes if a.type == ntfs.DATA])
    return bitmap, bytearray(volume.pieces_of(bitmap, 0, bitmap.size))


def raw_records(volume, number):
    """(number, bytes with the fixups still in) of a record and its extensions."""
    record = volume.record(number)
    numbers = {number} | {n for _, _, n, _ in volume.list_entries(record)}
    size = volume.record_size
    return [(n, volume.pieces_of(volume.mft, n * size, size)) for n in sorted(numbers)]


def sparse_digest(size, islands):
    digest, at = hashlib.sha256(), 0
    for start, data in sorted(islands.items()) + [(size, b'')]:
        while at < start:
            n = min(start - at, 1 << 24)
            digest.update(bytes(n))
            at += n
        digest.update(data)
        at += len(data)
    return digest.hexdigest()


def comb(width):
    """Every second group of so many clusters."""
    return lambda lcn: lcn // width % 2 == 0


def whole_records(v):
    """Clusters in a group that holds whole file records, so that none is split between two runs of $MFT."""
    return max(1, 1024 // v.cluster_bytes)


def rubble(lcn):
    """Groups of one to some clusters, with no order in them."""
    return (lcn * 2654435761 >> 13) % 5 < 3


# --------------------------------------------------------------------- notes

def annotate(row, listing):
    if 'unlinked' in row.notes:
        return
    item = listing.find(row)
    if item is None and not row.live:
        row.notes |= {'reused', 'gone'}
        return
    if item is None or (row.live and not row.matches(item)):
        raise RuntimeError('the volume does not hold live %s' % row.path)
    if not row.matches(item):
        row.notes.add('reused')
    if 'orphan' not in row.notes and len(listing.by_path[row.path]) > 1:
        row.notes.add('samepath')
    row.notes |= name_notes(row, item, listing) | record_notes(item, listing.volume)
    if item.stream:
        row.notes |= stream_notes(item.stream, listing.volume)


def name_notes(row, item, listing):
    notes = set()
    if any(n.namespace in (2, 3) for n in item.names):
        notes.add('dosname')
    if not item.last:
        notes.add('name-outside')
    if len(item.plain) > 1:
        notes.add('hardlink')
        if item.last and listing.path(item.last) == row.path:
            notes.add('lastname')
    return notes


def record_notes(item, volume):
    notes = set()
    lists = [a for a in item.record.own if a.type == ntfs.ATTR_LIST]
    if lists:
        notes.add('attrlist' if lists[0].resident else 'attrlist-nonresident')
    if any(a.type == ntfs.DATA and a.name for a in item.attributes):
        notes.add('streams')
    if item.record.number * volume.record_size >= volume.mft.runs[0][0] * volume.cluster:
        notes.add('mftext')
    return notes


def stream_notes(stream, volume):
    if stream.resident:
        return {'resident'}
    notes = {'fragmented'} if stream.fragments > 1 else set()
    if stream.compressed:
        notes.add('compressed')
        if volume.overlong_tail(stream):
            notes.add('compressed-tail')
    elif stream.holes:
        notes.add('sparse')
    return notes


# ---------------------------------------------------------------- partitions

FAR = b'\xfe\xff\xff'


def table_entry(kind, start, sectors):
    return b'\0' + FAR + bytes([kind]) + FAR + struct.pack('<II', start, sectors)


def table_sector(entries, tail_of_code=b'\0' * 6):
    entries = b''.join(table_entry(*e) for e in entries).ljust(64, b'\0')
    return bytes(440) + tail_of_code + entries + b'\x55\xaa'


class Disk:
    """A partitioned image: volumes as primaries or as a chain of logical ones."""

    def __init__(self, name, sector=512, extended_type=0x0F):
        self.name, self.sector, self.extended_type = name, sector, extended_type
        self.primaries, self.logicals = [], []
        self.path = os.path.join(work_dir, name + '.img')

    def primary(self, volume):
        self.primaries.append(volume)

    def logical(self, volume):
        """A logical volume; it starts `start` sectors behind its own table sector."""
        self.logicals.append(volume)

    def sectors(self, volume):
        return volume.size // self.sector

    def chain(self, base):
        """(table sector, volume) of each logical volume, and the end."""
        tables, at = [], base
        for volume in self.logicals:
            tables.append((at, volume))
            at += volume.start + self.sectors(volume)
        return tables, at

    def build(self):
        end = max(v.start + self.sectors(v) for v in self.primaries)
        entries = [(7, v.start, self.sectors(v)) for v in self.primaries]
        tables, last = self.chain(end)
        if tables:
            entries.append((self.extended_type, end, last - end))
        mark = struct.pack('<IH', 0x5A17C0DE, 4096 if self.sector == 4096 else 0)
        with open(self.path, 'wb') as f:
            f.truncate(last * self.sector)
            f.write(table_sector(entries, mark))
            for volume in self.primaries:
                self.copy(f, volume, volume.start)
            for i in range(len(tables)):
                self.write_logical(f, i, tables, end)

    def write_logical(self, f, i, tables, base):
        at, volume = tables[i]
        entries = [(7, volume.start, self.sectors(volume))]
        if i + 1 < len(tables):
            start, following = tables[i + 1]
            entries.append((5, start - base, following.start + self.sectors(following)))
        f.seek(at * self.sector)
        f.write(table_sector(entries))
        self.copy(f, volume, at + volume.start)

    def copy(self, f, volume, start):
        """Copies all that isn't zero, so that the image stays sparse."""
        with open(volume.image, 'rb') as source:
            at = start * self.sector
            while block := source.read(1 << 16):
                if block.count(0) != len(block):
                    f.seek(at)
                    f.write(block)
                at += len(block)

    def volumes(self):
        return self.primaries + self.logicals

    def pack(self, folder):
        """Writes the image and its manifest."""
        for volume in self.volumes():
            volume.settle_table()
        self.build()
        stem, volumes = os.path.join(folder, self.name), self.volumes()
        for volume in volumes:
            volume.annotate()
        ntfs.write_manifest(stem + '.json', self.descriptions(), [volume.rows for volume in volumes])
        with open(stem + '.img.xz', 'wb') as out:
            subprocess.run(['xz', '-9e', '-T1', '-c', self.path], stdout=out, check=True)
        print('%-12s %9d raw  %8d packed' % (
            self.name, os.path.getsize(self.path), os.path.getsize(stem + '.img.xz')), flush=True)
        for path in [self.path] + [v.image for v in volumes]:
            os.unlink(path)

    def descriptions(self):
        with open(self.path, 'rb') as f, contextlib.closing(
                mmap.mmap(f.fileno(), 0, access=mmap.ACCESS_READ)) as image:
            return ntfs.described(image)
