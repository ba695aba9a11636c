"""A volume inside each format of other tools gives the same files; images that are cut or wrong give the right bytes, or none."""
import os
import random
import re
import resource
import shutil
import subprocess
import tempfile

import trials

SECTOR, STAMP = 512, 432
CUTS, WRONG = 12, 30  # of each kind
HEADS = (0, 4096), (0, 1 << 20), (-4096, None)
NUMBERS = 0, 1, 0x7F, 0xFF, 1 << 31, (1 << 32) - 1, 1 << 63, (1 << 64) - 1
MOST_MEMORY = 2 << 30  # of addresses; what is really used is less
QEMU = 'qemu-img convert -O {} raw.raw {}'
EWF = 'ewfacquire -u -q -t x {} raw.raw'
# Name of the file to open, how it is made, and as what qemu-img reads it.
KINDS = {
    'vhd': ('x.vhd', QEMU.format('vpc -o force_size=on', 'x.vhd'), 'vpc'),
    'fixed vhd': ('x.vhd', QEMU.format('vpc -o force_size=on,subformat=fixed', 'x.vhd'), 'vpc'),
    'vhdx': ('x.vhdx', QEMU.format('vhdx -o block_size=1M', 'x.vhdx'), 'vhdx'),
    'vmdk': ('x.vmdk', QEMU.format('vmdk', 'x.vmdk'), 'vmdk'),
    'vmdk, zeros': ('x.vmdk', QEMU.format('vmdk -o zeroed_grain=on', 'x.vmdk'), 'vmdk'),
    'vmdk, flat': ('x.vmdk', QEMU.format('vmdk -o subformat=monolithicFlat', 'x.vmdk'), 'vmdk'),
    'vmdk, pieces': ('x.vmdk', QEMU.format('vmdk -o subformat=twoGbMaxExtentSparse', 'x.vmdk'), 'vmdk'),
    'vmdk, stream': ('x.vmdk', QEMU.format('vmdk -o subformat=streamOptimized', 'x.vmdk'), 'vmdk'),
    'qcow2': ('x.qcow2', QEMU.format('qcow2', 'x.qcow2'), 'qcow2'),
    'qcow2, packed': ('x.qcow2', QEMU.format('qcow2 -c', 'x.qcow2'), 'qcow2'),
    'e01': ('x.E01', EWF.format('-f encase6 -c best -S 1048576'), None),
    's01': ('x.s01', EWF.format('-f smart -c fast'), None),
    'pieces': ('x.001', 'split -b 1000000 -a 3 --numeric-suffixes=1 raw.raw x.', None)}
# What is left of these is a raw disk, or a smaller one: nothing in them tells.
TELLS_NO_END = 'fixed vhd', 'pieces'


def make(kind, raw):
    """A folder with nothing but the image, and the name to open."""
    folder = tempfile.mkdtemp(dir=trials.scratch())
    os.link(raw, os.path.join(folder, 'raw.raw'))
    subprocess.run(KINDS[kind][1], shell=True, cwd=folder, check=True, capture_output=True)
    os.unlink(os.path.join(folder, 'raw.raw'))
    return folder, os.path.join(folder, KINDS[kind][0])


def whole(volume):
    part = trials.Part('images: whole ' + os.path.basename(volume))
    for kind in KINDS:
        folder, image = make(kind, volume)
        found = []
        for medium in (volume, image):
            target = os.path.join(folder, 'to')
            listed = trials.run(['scan', medium, '-p', '1', '--files'], folder)
            saved = trials.run(['save', medium, '-p', '1', '--deleted', '--to', target], folder)
            found.append((listed.out, saved.status, trials.tree(target)))
            shutil.rmtree(target)
        part.judge(saved, [f'other files: {kind}'] if found[0] != found[1] or not found[0][2] else [])
        shutil.rmtree(folder)
    return part


def copied(image, folder):
    """The run, and the bytes with None in place of each sector that the map calls unread."""
    copy = os.path.join(folder, 'copy')
    outcome = trials.run(['image', image, copy], folder)
    data = trials.bytes_of(copy) if os.path.exists(copy) else b''
    sectors = [data[at:at + SECTOR] for at in range(0, len(data), SECTOR)]
    if os.path.exists(copy + '.map'):
        rows = re.findall(r'^0x(\w+) +0x(\w+) +-', trials.bytes_of(copy + '.map').decode(), re.M)
        for start, size in rows:
            first = int(start, 16) // SECTOR
            sectors[first:first + int(size, 16) // SECTOR] = [None] * (int(size, 16) // SECTOR)
        os.unlink(copy + '.map')
    if data:
        os.unlink(copy)
    return outcome, sectors


def cut(path, rng):
    size = os.path.getsize(path)
    os.truncate(path, rng.choice((rng.randrange(size), rng.randrange(size // SECTOR + 1) * SECTOR, size - 1 - rng.randrange(min(size, 4096)))))


def spoil(path, rng):
    data = bytearray(trials.bytes_of(path))
    for _ in range(rng.choice((1, 1, 2, 6))):
        first, end = rng.choice(HEADS)
        places = range(len(data))[first:end]
        at, size = rng.choice(places), rng.choice((1, 2, 4, 8))
        number = rng.choice((*NUMBERS, rng.getrandbits(64))) & ((1 << 8 * size) - 1)
        data[at:at + size] = number.to_bytes(size, rng.choice(('little', 'big')))
    with open(path, 'wb') as file:
        file.write(data)


def differs(sectors, right):
    """Numbers of the sectors with other bytes; the copy's first one bears a stamp."""
    def unstamped(data, n):
        return data if n else data[:STAMP] + data[STAMP + 16:]
    return [n for n, mine in enumerate(sectors) if mine is not None and
            unstamped(mine, n) != unstamped(right[n * SECTOR:n * SECTOR + len(mine)], n)]


def try_one(part, kind, raw, pristine, change, seed):
    """Changes one file of the image. A cut one is compared with the disk, a spoilt one with what qemu-img reads."""
    rng = random.Random(f'{kind} {change.__name__} {seed}')
    folder = tempfile.mkdtemp(dir=trials.scratch())
    names = sorted(os.listdir(pristine))
    for name in names:
        shutil.copy(os.path.join(pristine, name), folder)
    change(os.path.join(folder, rng.choice(names)), rng)
    name, _, form = KINDS[kind]
    image = os.path.join(folder, name)
    outcome, sectors = copied(image, folder)
    reasons = []
    right = trials.bytes_of(raw)
    with open(image, 'rb') as file:
        is_text = form == 'vmdk' and not file.read(21).startswith((b'KDMV', b'# Disk DescriptorFile'))
    if change is cut and not is_text:
        reasons = [f'other bytes: {differs(sectors, right)[:5]}'] if differs(sectors, right) else []
        if outcome.status == 0 and len(sectors) * SECTOR < len(right) and kind not in TELLS_NO_END:
            reasons.append('shorter without a word')
    elif form and sectors and not is_text:
        other = os.path.join(folder, 'other')
        done = subprocess.run(['qemu-img', 'dd', '-f', form, '-O', 'raw', 'bs=1M', 'count=64', 'if=' + image, 'of=' + other], capture_output=True)
        wrong = differs(sectors, trials.bytes_of(other)) if done.returncode == 0 else []
        if form == 'vpc':  # qemu-img doesn't look at the bits for sectors that were never written
            wrong = [n for n in wrong if n and sectors[n].strip(b'\0')]
        reasons = [f'other bytes than qemu-img: {wrong[:5]}'] if wrong else []
    part.judge(outcome, [f'{reason} ({kind}, {seed})' for reason in reasons])
    shutil.rmtree(folder)


def changed(raw, change, count):
    part = trials.Part('images: ' + change.__name__)
    for kind in KINDS:
        pristine, _ = make(kind, raw)
        for seed in range(count):
            try_one(part, kind, raw, pristine, change, seed)
        shutil.rmtree(pristine)
    return part


def parts():
    missing = [word for word in ('qemu-img', 'ewfacquire') if not shutil.which(word)]
    if missing:
        trials.say(f'images: skipped: {" and ".join(missing)} is missing')
        return
    rng = random.Random(0)
    raw = os.path.join(trials.scratch(), 'small.raw')
    with open(raw, 'wb') as file:
        for _ in range(48):
            file.write(rng.choice((rng.randbytes(65536), bytes(65536), b'some text ' * 6553 + b'123456')))
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    yield whole(shutil.copy(trials.volume('basic'), trials.scratch()))
    yield changed(raw, cut, CUTS)
    yield changed(raw, spoil, WRONG)
