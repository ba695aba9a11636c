"""A disk that is full, or fails, at every write in turn; and small file systems that are really full."""
import collections
import contextlib
import hashlib
import os
import re
import shutil
import subprocess
import time
import reads
import trials

IMAGE = trials.volume('basic')
LARGE = trials.volume('record4k')  # has files above 1 MiB
OLDER = b'what stood here before\n'
WRITES = 400
HINTS = ('fallocate', 'ftruncate', 'unlink')  # nothing is lost by their failure
SYNCS = ('fsync', 'syncfs')
UNMOUNTS = 50
DISK_SIZE = 48 << 20  # of the really full ones
BLOCK = 4096
FILLED_SLOWLY = 1 << 20
ROOMS = (0, 4, 8, 12, 24, 60, 250, 1000, 2500, 4000, 9000, 30000)  # KiB that are left on them


class Work:
    """One command that writes: its words in a folder, and what must be there before it."""

    def __init__(self, name, words, older=(), resumes=False):
        self.name, self.words, self.older, self.resumes = name, words, older, resumes

    def prepare(self, folder):
        target = os.path.join(folder, 'target')
        os.makedirs(target)
        for name in self.older:
            with open(os.path.join(target, name), 'wb') as file:
                file.write(OLDER)
        return target

    def tree(self, target):
        found = trials.tree(target)
        if self.name == 'scan --log':  # but for the times in it
            content = re.sub(rb'\d', b'0', trials.bytes_of(os.path.join(target, 'log.txt')))
            found['log.txt'] = collections.Counter([hashlib.sha256(content).hexdigest()])
        return found

    def words_in(self, target):
        return [word.replace('TARGET', target) for word in self.words]


WORKS = (
    Work('save', ['save', IMAGE, '--json', '--to', 'TARGET/out']),
    Work('save of larger files', ['save', LARGE, '-p', '1', '--json', '--to', 'TARGET/out']),
    Work('scan --save-info', ['scan', IMAGE, '--json', '--save-info', 'TARGET/info.tht'], ['info.tht']),
    Work('partitions --save-info',
         ['partitions', IMAGE, '--json', '--search', 'thorough', '--save-info', 'TARGET/info.thd'], ['info.thd']),
    Work('scan --log', ['scan', IMAGE, '--json', '--log', 'TARGET/log.txt'], ['log.txt']),
    Work('image', ['image', IMAGE, 'TARGET/disk.img', '--json'], resumes=True),
)


def is_unsynced(calls, at):
    """Whether the file of this call holds what was written to it after its last sync, if there was one."""
    path = calls[at - 1][1]
    before = [call[0] for call in calls[:at - 1] if call[1] == path and call[0] in ('write', 'pwrite', 'fsync')]
    return bool(before) and before[-1] != 'fsync'


def never_synced(calls, folder):
    """Files that a run leaves to the system's caches."""
    for at, (name, path) in enumerate(calls, 1):
        later = [call[0] for call in calls[at:] if call[1] == path or call[0] == 'syncfs']
        if name in ('write', 'pwrite') and path.startswith(folder) and not {'write', 'pwrite', *SYNCS} & {*later}:
            yield f'status 0 without a sync: {path}'


def must_fail(call, calls, at, target, how):
    """Whether the run can't have done its work, or can't know that it has."""
    name, path = call[:2]
    if how != 'once' or name in HINTS or not path.startswith(target + '/'):
        return False
    return name != 'close' or is_unsynced(calls, at)


def tree_reasons(work, outcome, plain, target, right):
    found = work.tree(target)
    difference = reads.Difference(right, found)
    for name in set(work.older) & set(difference.changed):
        if outcome.status != 0 and not name.endswith('.txt') and trials.bytes_of(os.path.join(target, name)) != OLDER:
            yield f'an older file is neither kept nor written whole: {name}'
    if difference.any() and outcome.status == 0:
        yield f'status 0 with differences: {difference.changed + difference.missing + difference.added}'
    if difference.added:
        yield f'left behind: {difference.added}'
    named = '\n'.join(reads.said(outcome, plain))
    if outcome.words[0] == 'save' and outcome.totals:
        for key in difference.changed + difference.missing:
            if os.path.basename(key) not in named and outcome.totals['complete']:
                yield f'a file that was not saved is not named: {key}'
    if outcome.totals and outcome.words[0] != 'partitions':
        lost = difference.missing + difference.changed
        if outcome.words[0] == 'save' and outcome.totals['complete'] and len(lost) > outcome.totals['failed']:
            yield f'complete, but lost: {lost}'
    if outcome.status != 0 and not named:
        yield 'a failure without a word'


def image_reasons(outcome, target, right):
    path = os.path.join(target, 'disk.img')
    if outcome.status == 0 and (not os.path.exists(path) or trials.digest(path) != right):
        yield 'status 0 with another image'
    if os.path.exists(path) and not os.path.exists(path + '.map'):
        yield 'an image without its map'


def resume_reasons(outcome, folder, target, right):
    path = os.path.join(target, 'disk.img')
    yield from image_reasons(outcome, target, right)
    again = ['image', IMAGE, path, *(['--resume'] if os.path.exists(path) else [])]
    second = trials.run(again, folder)
    if second.status != 0 or trials.digest(path) != right:
        yield f'can not be resumed: {second.status} {second.err}'
    left = sorted(os.listdir(target))
    if left != ['disk.img', 'disk.img.map']:
        yield f'left behind: {left}'


def fill_disk(part, work):
    def plain_run(_, folder):
        target = work.prepare(folder)
        under = target + ':' + trials.work_folder(folder)
        plain, calls = trials.listing(work.words_in(target), folder, under, 'write')
        for call in calls:
            call[1] = call[1].replace(folder, '')
        return plain, calls, work.tree(target)
    plain, calls, right = next(trials.in_parallel(plain_run, [None]))
    part.judge(plain, [] if work.name == 'scan --log' else list(never_synced(calls, '/target'))[:1])

    def failing(trial, folder):
        at, how = trial
        target = work.prepare(folder)
        outcome = trials.run(work.words_in(target), folder, target + ':' + trials.work_folder(folder), 'write', at, how)
        reasons = []
        if must_fail(calls[at - 1], calls, at, '/target', how) and outcome.status == 0:
            reasons.append(f'status 0 after a failed {calls[at - 1][0]}: {calls[at - 1][1]}')
        if os.listdir(trials.work_folder(folder)):
            reasons.append(f'work folder left: {os.listdir(trials.work_folder(folder))}')
        if work.resumes:
            reasons += resume_reasons(outcome, folder, target, sum_of(right['disk.img']))
        else:
            reasons += tree_reasons(work, outcome, plain, target, right)
        return outcome, reasons
    wanted = [(at, how) for at in trials.spread(len(calls), WRITES) for how in ('once', 'full', 'short')]
    for outcome, reasons in trials.in_parallel(failing, wanted):
        part.judge(outcome, reasons)


def sum_of(contents):
    return next(iter(contents))


class SmallDisk:
    """An ext4 on a loop device of its own, mounted below a folder."""

    def __init__(self, folder):
        self.file, self.place, self.device = os.path.join(folder, 'disk'), os.path.join(folder, 'mount'), None
        os.makedirs(self.place)
        with open(self.file, 'wb') as file:
            file.truncate(DISK_SIZE)

    def __enter__(self):
        subprocess.run(['mkfs.ext4', '-q', '-b', str(BLOCK), '-O', '^has_journal', '-m', '0', self.file], check=True)
        self.device = subprocess.run(['losetup', '--find', '--show', self.file], check=True, capture_output=True,
                                     text=True).stdout.strip()
        try:
            self.mount()
        except subprocess.CalledProcessError:
            self.__exit__()
            raise
        return self

    def mount(self):
        subprocess.run(['mount', '-t', 'ext4', self.device, self.place], check=True)

    def fill(self, room):
        """Leaves so many KiB."""
        space = os.statvfs(self.place)
        most = space.f_bavail * space.f_frsize - FILLED_SLOWLY
        with open(os.path.join(self.place, 'filler'), 'wb', buffering=0) as file:
            os.posix_fallocate(file.fileno(), 0, most)
            file.seek(most)
            for _ in range(2):  # what is set aside for writing later comes back with the sync
                with contextlib.suppress(OSError):
                    while file.write(bytes(BLOCK)):
                        pass
                os.fsync(file.fileno())
            file.truncate(file.tell() // BLOCK * BLOCK - (room << 10))

    def unmount(self):
        for _ in range(UNMOUNTS):  # a process that is just being started may hold what this one had open
            if subprocess.run(['umount', self.place], capture_output=True).returncode == 0:
                return
            time.sleep(0.1)
        subprocess.run(['umount', '--lazy', self.place], check=True)

    def __exit__(self, *_):
        if os.path.ismount(self.place):
            self.unmount()
        subprocess.run(['losetup', '--detach', self.device], check=True)


def small_disks_work(folder):
    if os.getuid() != 0 or not all(map(shutil.which, ('mkfs.ext4', 'losetup', 'mount'))):
        return False
    try:
        with SmallDisk(folder):
            return True
    except (subprocess.CalledProcessError, OSError):
        return False


def fill_small_disks(part):
    plain_trees = {}

    def plain_run(work, folder):
        target = work.prepare(folder)
        return trials.run(work.words_in(target), folder), work.tree(target)
    for work, result in zip(WORKS, trials.in_parallel(plain_run, WORKS)):
        plain_trees[work] = result

    def filling(trial, folder):
        work, room, work_too = trial
        plain, right = plain_trees[work]
        with SmallDisk(folder) as disk:
            target = work.prepare(disk.place)
            trials.work_folder(disk.place)
            disk.fill(room)
            outcome = trials.run(work.words_in(target), disk.place if work_too else folder)
            disk.unmount()
            disk.mount()  # only what has reached the disk is there now
            if work.resumes:
                reasons = list(image_reasons(outcome, target, sum_of(right['disk.img'])))
            else:
                reasons = list(tree_reasons(work, outcome, plain, target, right))
        return outcome, reasons
    wanted = [(work, room, work_too) for work in WORKS for room in ROOMS for work_too in (False, True)]
    for outcome, reasons in trials.in_parallel(filling, wanted):
        part.judge(outcome, reasons)


def write_to_full_device(part):
    for words in (['list', IMAGE, '-r'], ['scan', IMAGE], ['partitions', IMAGE, '--json'], ['cat', IMAGE, '--record', '0']):
        for command in (f'"$0" "$@" >/dev/full',):
            done = subprocess.run(['sh', '-c', command, trials.program(), *words], capture_output=True, text=True)
            outcome = trials.Outcome(words, {'to': '/dev/full'}, done.returncode, b'', done.stderr)
            part.judge(outcome, ['status 0 onto a full device'] if done.returncode == 0 else [])


def parts():
    for work in WORKS:
        part = trials.Part(f'writes of {work.name}')
        fill_disk(part, work)
        yield part
    part = trials.Part('full file systems')
    write_to_full_device(part)
    if next(trials.in_parallel(lambda _, folder: small_disks_work(folder), [None])):
        fill_small_disks(part)
    else:
        trials.say('no root, loop devices or ext4 here: the small full disks are skipped')
    yield part
