"""Volumes are wrecked in thirteen ways; what comes back is compared with what the driver gave before.

A wreck is tried as a user would: the table, then Turbo Scan, then both searches, until all files are exact. A file with
other bytes must be named, whichever words brought it; of wrecks that leave all data and records, all must come back.
"""
import collections
import contextlib
import hashlib
import json
import mmap
import os
import random
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import zlib

import trials

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'volumes'))
import ntfs_reader as ntfs
import relayout

MIB = 1 << 20
SECTOR = 512
LEAD = 2048              # sectors in front of the volume on a disk
SIZE = 96 * MIB
COMPRESSED = 0x800
TOOLS = ('mkntfs', 'ntfs-3g')


# ---------------------------------------------------------------- volumes

@contextlib.contextmanager
def mounted(image, options='compression'):
    root = image + '.mnt'
    os.makedirs(root, exist_ok=True)
    driver = subprocess.Popen(['ntfs-3g', '-o', 'no_detach,' + options, image, root],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    for _ in range(600):
        if os.path.ismount(root):
            break
        time.sleep(0.02)
    else:
        raise RuntimeError('ntfs-3g does not mount ' + image)
    try:
        yield root
    finally:
        subprocess.run(['umount', root], check=True)
        driver.wait()


@contextlib.contextmanager
def opened(image):
    """The volume's own bytes, to read and to write. Not while mounted."""
    with open(image, 'r+b') as file, contextlib.closing(mmap.mmap(file.fileno(), 0)) as bytes_:
        yield ntfs.Volume(bytes_)


def make_file(path, size=SIZE):
    with open(path, 'wb') as file:
        file.truncate(size)


def format_volume(image, cluster, label):
    subprocess.run(['mkntfs', '-F', '-Q', '-q', '-c', str(cluster), '-s', str(SECTOR), '-p', str(LEAD), '-H', '255',
                    '-S', '63', '-L', label, image], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def text(rng, size):
    words = [b'ferry ', b'lamp ', b'river ', b'archive ', b'two maps\n', b'invoice ', b'crate of apples\n']
    out = bytearray()
    while len(out) < size:
        out += rng.choice(words) + b'%d ' % rng.randrange(1000)
    return bytes(out[:size])


def put(root, path, data):
    os.makedirs(os.path.dirname(root + path), exist_ok=True)
    with open(root + path, 'wb', buffering=0) as file:
        for at in range(0, len(data), MIB):
            file.write(data[at:at + MIB])


def fill(root, rng):
    for folder in range(12):
        for number in range(14):
            size = rng.choice([0, 40, 300, 700, 900, 1500, 4096, 5000, 30000, 90000])
            put(root, f'/docs/f{folder:02}/é letter {number:03}.txt', text(rng, size))
    put(root, '/big/photo.raw', rng.randbytes(5 * MIB + 17))
    put_holes(root, rng)
    put_compressed(root, rng)
    for number in range(8):
        put(root, f'/streams/s{number}.doc', text(rng, 3000 * number))
        os.setxattr(root + f'/streams/s{number}.doc', 'user.note', text(rng, 50 + 9000 * number))
        put(root, f'/links/one/first{number}.txt', text(rng, 500 + 4000 * number))
        os.makedirs(root + '/links/two', exist_ok=True)
        os.link(root + f'/links/one/first{number}.txt', root + f'/links/two/second{number}.txt')


def put_holes(root, rng):
    os.makedirs(root + '/holes')
    for number, size in enumerate((9 * MIB, 700000, 40 * MIB + 5)):
        with open(root + f'/holes/h{number}.img', 'wb', buffering=0) as file:
            file.truncate(size)
            for at in (size // 3, size // 2, size - 900):
                file.seek(at)
                file.write(rng.randbytes(800))


def put_compressed(root, rng):
    os.makedirs(root + '/packed')
    key = 'system.ntfs_attrib_be'
    flags = int.from_bytes(os.getxattr(root + '/packed', key), 'big')
    os.setxattr(root + '/packed', key, (flags | COMPRESSED).to_bytes(4, 'big'))
    for number, size in enumerate((100, 5000, 65536, 65537, 300000, 2 * MIB + 3)):
        put(root, f'/packed/text{number}.log', text(rng, size))
    put(root, '/packed/noise.bin', rng.randbytes(200000))
    put(root, '/packed/mixed.bin', text(rng, 90000) + bytes(200000) + rng.randbytes(70000) + text(rng, 1000))


def bitmap_of(volume):
    return ntfs.Stream([a for a in volume.record(6).own if a.type == ntfs.DATA and not a.name])


@contextlib.contextmanager
def comb(image, width, teeth):
    """Meanwhile of `width` free clusters only the first `teeth` can be taken, so that files and table break."""
    with opened(image) as volume:
        bits = bytearray(volume.pieces_of(bitmap_of(volume), 0, bitmap_of(volume).size))
        held = [n for n in range(len(bits) * 8) if not bits[n >> 3] >> (n & 7) & 1 and n % width >= teeth]
        for n in held:
            bits[n >> 3] |= 1 << (n & 7)
        volume.overwrite(bitmap_of(volume), 0, bits)
    yield
    with opened(image) as volume:
        bits = bytearray(volume.pieces_of(bitmap_of(volume), 0, bitmap_of(volume).size))
        for n in held:
            bits[n >> 3] &= ~(1 << (n & 7))
        volume.overwrite(bitmap_of(volume), 0, bits)


def shatter(root, rng, cluster):
    for number in range(3):
        put(root, f'/broken/x{number}.bin', rng.randbytes(min(cluster, 4096) * 500 + 555 * number))
    for number in range(120):
        put(root, f'/broken/s{number:03}.txt', text(rng, 60 + 40 * (number % 40)))


def delete_some(root, rng):
    for number in range(24):
        put(root, f'/gone/g{number:02}.bin', rng.randbytes(rng.choice([300, 5000, 60000, 400000])))
    os.sync()
    for number in range(24):
        os.unlink(root + f'/gone/g{number:02}.bin')
    put(root, '/after/new.bin', rng.randbytes(700000))


def digest_of(path):
    with open(path, 'rb') as file:
        return hashlib.file_digest(file, 'sha256').hexdigest()


class Made:
    """A volume in an image, and the digests of its files and named streams as the driver gives them."""

    def __init__(self, folder, name, cluster, newer=False):
        self.name, self.cluster = name, cluster
        self.image = os.path.join(folder, name + '.img')
        rng = random.Random(name)
        make_file(self.image)
        format_volume(self.image, cluster, 'Trial ' + name)
        with mounted(self.image) as root:
            fill(root, rng)
        with comb(self.image, *((7, 3) if cluster == 512 else (3, 1))), mounted(self.image) as root:
            shatter(root, rng, cluster)
        with mounted(self.image) as root:
            delete_some(root, rng)
        if newer:
            lay_out_newer(self.image)
        self.truth, self.records = {}, {}
        with mounted(self.image, 'ro') as root:
            for at, _, names in os.walk(root):
                for name in names:
                    self.take(os.path.join(at, name), root)
        with opened(self.image) as volume:
            self.geometry = volume

    def take(self, full, root):
        path = full[len(root):]
        self.truth[path] = digest_of(full)
        self.records[path] = os.stat(full).st_ino
        for key in os.listxattr(full):
            if key.startswith('user.'):
                self.truth[path + ':' + key[5:]] = hashlib.sha256(os.getxattr(full, key)).hexdigest()

    def lying_before(self, end):
        """Names of files that keep a cluster in the volume's first `end` bytes."""
        found = set()
        with opened(self.image) as volume:
            for path, number in self.records.items():
                stream = ntfs.Found(volume, volume.record(number)).stream
                runs = [] if stream.resident else stream.runs
                if any(lcn is not None and lcn * volume.cluster < end for _, lcn in runs):
                    found.add(os.path.basename(path))
        return found


def lay_out_newer(image):
    """Puts the mirror in front of the table and the table far behind, as newer systems format."""
    with opened(image) as volume:
        m = volume.image
        bitmap = bitmap_of(volume)
        bits = bytearray(volume.pieces_of(bitmap, 0, bitmap.size))

        def mark(first, count, used):
            for n in range(first, first + count):
                bits[n >> 3] = bits[n >> 3] & ~(1 << (n & 7)) | used << (n & 7)

        def free_from(first, count):
            return next(n for n in range(first, len(bits) * 8)
                        if not any(bits[i >> 3] >> (i & 7) & 1 for i in range(n, n + count)))
        size = volume.record_size
        length = sum(n for n, _ in volume.mft.runs)
        mirrored = max(1, 4096 // volume.cluster)
        at = free_from(volume.total_sectors // volume.sectors_per_cluster * 3 // 4, length)
        low = free_from(2, mirrored)
        table = volume.pieces_of(volume.mft, 0, length * volume.cluster)
        for count, lcn in [*volume.mft.runs, (mirrored, volume.mirror_lcn)]:
            mark(lcn, count, 0)
            m[lcn * volume.cluster:(lcn + count) * volume.cluster] = bytes(count * volume.cluster)
        mark(at, length, 1)
        mark(low, mirrored, 1)
        start = at * volume.cluster
        m[start:start + len(table)] = table
        for sector in (0, volume.total_sectors):
            struct.pack_into('<QQ', m, sector * SECTOR + 48, at, low)
        move_data(volume, start, 0, [(length, at)])
        move_data(volume, start + size, 1, [(mirrored, low)])
        m[low * volume.cluster:low * volume.cluster + 4 * size] = m[start:start + 4 * size]
        ntfs.Volume(m).overwrite(bitmap, 0, bits)


def move_data(volume, at, number, runs):
    m, size = volume.image, volume.record_size
    b = bytearray(volume.parse_record(number, bytes(m[at:at + size])).bytes)
    attributes = relayout.split(b)
    attributes.append(relayout.with_runs(relayout.take(attributes, ntfs.DATA), 0, runs))
    body = b''.join(sorted(attributes, key=lambda a: ntfs.u32(a, 0))) + b'\xff\xff\xff\xff\0\0\0\0'
    start = ntfs.u16(b, 20)
    b[start:] = body.ljust(len(b) - start, b'\0')
    struct.pack_into('<I', b, 24, start + len(body))
    relayout.protect(b)
    m[at:at + size] = bytes(b)


# ---------------------------------------------------------------- disks

def paste(path, at, data):
    with open(path, 'r+b') as file:
        file.seek(at)
        file.write(data)


def wipe(path, at, size):
    paste(path, at, bytes(size))


def copy_into(source, target, at):
    subprocess.run(['dd', 'if=' + source, 'of=' + target, 'bs=1M', f'seek={at // MIB}', 'conv=sparse,notrunc',
                    'status=none'], check=True)


def classic_table(kind, start, sectors):
    head = bytearray(SECTOR)
    head[446:462] = struct.pack('<BBBBBBBBII', 0, 1, 1, 0, kind, 254, 255, 255, start, sectors)
    head[510:] = b'\x55\xaa'
    return head


def lay_bare(volume, path):
    shutil.copyfile(volume, path)


def lay_mbr(volume, path):
    size = os.path.getsize(volume)
    make_file(path, LEAD * SECTOR + size + MIB)
    paste(path, 0, classic_table(7, LEAD, size // SECTOR))
    copy_into(volume, path, LEAD * SECTOR)


def lay_gpt(volume, path):
    size = LEAD * SECTOR + os.path.getsize(volume) + MIB
    make_file(path, size)
    last, array = size // SECTOR - 1, 128 * 128 // SECTOR
    kind = bytes.fromhex('a2a0d0ebe5b9334487c068b6b72699c7')
    bounds = struct.pack('<QQQ', LEAD, LEAD + os.path.getsize(volume) // SECTOR - 1, 0)
    entry = kind + b'unique-of-part!!' + bounds + 'Basic data partition'.encode('utf-16le')
    entries = entry.ljust(128 * 128, b'\0')

    def header(here, other, at):
        h = bytearray(struct.pack('<8sIIIIQQQQ16sQIII', b'EFI PART', 0x10000, 92, 0, 0, here, other, 2 + array,
                                  last - array - 1, b'disk-guid-of-it!', at, 128, 128, zlib.crc32(entries)))
        struct.pack_into('<I', h, 16, zlib.crc32(bytes(h)))
        return h
    paste(path, 0, classic_table(0xEE, 1, last))
    paste(path, SECTOR, header(1, last, 2))
    paste(path, 2 * SECTOR, entries)
    paste(path, (last - array) * SECTOR, entries)
    paste(path, last * SECTOR, header(last, 1, last - array))
    copy_into(volume, path, LEAD * SECTOR)


DISKS = {'bare': (lay_bare, 0), 'mbr': (lay_mbr, LEAD * SECTOR), 'gpt': (lay_gpt, LEAD * SECTOR)}


# ---------------------------------------------------------------- wrecks

def no_table(path, base, made):
    if base:
        wipe(path, 0, 34 * SECTOR)


def no_boot(path, base, made):
    wipe(path, base, SECTOR)


def no_table_no_boot(path, base, made):
    no_table(path, base, made)
    no_boot(path, base, made)


def no_boots(path, base, made):
    no_table_no_boot(path, base, made)
    wipe(path, base + os.path.getsize(made.image) - SECTOR, SECTOR)


def no_first_records(path, base, made):
    v = made.geometry
    wipe(path, base + v.mft_lcn * v.cluster, 16 * v.record_size)


def no_mirror(path, base, made):
    v = made.geometry
    wipe(path, base + v.mirror_lcn * v.cluster, 4 * v.record_size)


def no_records_no_mirror(path, base, made):
    no_first_records(path, base, made)
    no_mirror(path, base, made)


def no_seventh(path, base, made):
    with opened(made.image) as v:
        for number in range(28, v.record_count, 7):
            at, here = v.place(v.mft, number * v.record_size)
            wipe(path, base + at, min(here, v.record_size))


def no_first_megabyte(path, base, made):
    wipe(path, 0, base + MIB)


def reformatted(path, base, made, cluster=None):
    part = path + '.part'
    make_file(part, os.path.getsize(made.image))
    with open(path, 'rb') as source:
        source.seek(base)
        paste(part, 0, source.read(os.path.getsize(made.image)))
    format_volume(part, cluster or made.cluster, 'New')
    subprocess.run(['dd', 'if=' + part, 'of=' + path, 'bs=1M', f'seek={base // MIB}', 'conv=notrunc', 'status=none'],
                   check=True)
    os.unlink(part)


def other_clusters(path, base, made):
    reformatted(path, base, made, 2048)


def cut_front(path, base, made):
    with open(path, 'rb') as source, open(path + '.cut', 'wb') as target:
        source.seek(base + 3 * SECTOR * 1024 + 5 * SECTOR)
        shutil.copyfileobj(source, target)
    os.replace(path + '.cut', path)


# Each with whether all must come back, and the bytes in front that a wreck takes of the files' own data.
WRECKS = {'nothing': (None, True, 0), 'table': (no_table, True, 0), 'boot sector': (no_boot, True, 0),
          'table, boot sector': (no_table_no_boot, True, 0), 'both boot sectors': (no_boots, True, 0),
          'first records': (no_first_records, True, 0), 'mirror': (no_mirror, True, 0),
          'first records, mirror': (no_records_no_mirror, False, 0), 'every seventh': (no_seventh, False, 0),
          'first megabyte': (no_first_megabyte, False, MIB), 'reformatted': (reformatted, False, 0),
          'other clusters': (other_clusters, False, 0), 'cut front': (cut_front, False, 0)}


# ---------------------------------------------------------------- what comes back

class Saved:
    """What one save brought."""

    def __init__(self, image, words, folder):
        target = tempfile.mkdtemp(dir=folder)
        report = target + '.json'
        self.outcome = trials.run(['save', image, '--to', target, '--streams', '--report', report, *words], folder)
        self.files = {path[len(target):]: digest_of(path) for path in trials.files_below(target)}
        self.named = self.outcome.err
        if os.path.exists(report):
            with open(report, errors='replace') as lines:
                rows = [json.loads(line) for line in lines]
            self.named += '\n'.join(os.path.basename(row['path']) for row in rows if row['reason'])
            os.unlink(report)
        shutil.rmtree(target)

    def exact(self, made):
        return sum((collections.Counter(self.files.values()) & collections.Counter(made.truth.values())).values())

    def silent(self, made, excused):
        """Files of the volume that have other bytes and are not named."""
        known = set(made.truth.values())
        names = {os.path.basename(path.split(':')[0]) for path in made.truth}
        for path, digest in self.files.items():
            name = os.path.basename(path)
            if name in names - excused and digest not in known and name not in self.named:
                yield path


def roads(image, folder):
    yield []
    yield ['--turbo']
    for search in ('quick', 'thorough'):
        listed = trials.run(['partitions', image, '--search', search, '--json'], folder).out
        for volume in json.loads(listed or b'[]'):
            if volume.get('verified'):
                yield ['--search', search, '-p', str(volume['number'])]
                yield ['--search', search, '-p', str(volume['number']), '--turbo']


def trial(made, disk, wreck, part, folder):
    lay, base = DISKS[disk]
    change, all_must_come, lost = WRECKS[wreck]
    path = os.path.join(folder, 'disk.img')
    lay(made.image, path)
    if change:
        change(path, base, made)
    excused = made.lying_before(lost) if lost else set()
    best = 0
    for words in roads(path, folder):
        saved = Saved(path, words, folder)
        silent = list(saved.silent(made, excused))
        part.judge(saved.outcome, [f'wrong and not named: {silent[:5]}'] if silent else [])
        best = max(best, saved.exact(made))
        if best == len(made.truth):
            break
    trials.say(f'    {made.name:8} {disk:5} {wreck:22} {best:5} of {len(made.truth)}')
    if all_must_come and best < len(made.truth):
        part.reasons[f'{len(made.truth) - best} files of {made.name} did not come back: {disk}, {wreck}'] += 1
        part.runs += 1
    os.unlink(path)


def parts():
    missing = [tool for tool in TOOLS if not shutil.which(tool)]
    if missing or os.geteuid() != 0:
        trials.say(f'wrecks: left out, since {" and ".join(missing) or "root"} is missing')
        return
    folder = trials.scratch()
    for name, options in (('plain', {'cluster': 4096}), ('newer', {'cluster': 4096, 'newer': True}),
                          ('small', {'cluster': 512}), ('large', {'cluster': 65536})):
        made = Made(folder, name, **options)
        part = trials.Part('wrecks of ' + name)
        for disk in DISKS:
            for wreck in WRECKS:
                trial(made, disk, wreck, part, folder)
        os.unlink(made.image)
        yield part
