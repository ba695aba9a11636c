"""Volumes are mounted: what is copied out is what a save gives; bad sectors, killed programs and media that go harm nothing else."""
import collections
import contextlib
import errno
import hashlib
import json
import mmap
import os
import shutil
import signal
import subprocess
import tempfile
import time

import trials

PAGE, SECTOR = 4096, 512
PIECE = 1 << 20
OURS = 'user.th-ntfs.'


@contextlib.contextmanager
def mounted(words, folder, fault=None):
    """The program, with its mount at folder/mnt."""
    root = os.path.join(folder, 'mnt')
    os.makedirs(root, exist_ok=True)
    env = dict(os.environ, TMPDIR=trials.work_folder(folder), **(fault or {}))
    if fault:
        env['LD_PRELOAD'] = trials.LIBRARY
    run = subprocess.Popen([trials.program(), 'mount', *words, root], env=env, stderr=subprocess.PIPE, text=True)
    run.told = ''
    while 'Mounted at' not in run.told:
        line = run.stderr.readline()
        if not line:
            raise RuntimeError('not mounted: ' + run.told)
        run.told += line
    run.root = root
    try:
        yield run
    finally:
        run.send_signal(signal.SIGTERM)
        run.told += run.communicate(timeout=20)[1]


def content(path):
    """What is in a file, holes passed over."""
    digest = hashlib.sha256()
    with open(path, 'rb') as file:
        size = os.fstat(file.fileno()).st_size
        at = 0
        while at < size:
            try:
                at = os.lseek(file.fileno(), at, os.SEEK_DATA) // PIECE * PIECE
            except OSError:
                break
            piece = os.pread(file.fileno(), PIECE, at)
            if piece.strip(b'\0'):
                digest.update(b'%d ' % at + piece)
            at += PIECE
    return f'{size} {digest.hexdigest()}'


def picture(root):
    """Contents and dates by path; folders without a content."""
    found = {os.path.relpath(path, root): (content(path), round(os.stat(path).st_mtime)) for path in trials.files_below(root)}
    return found | {os.path.relpath(os.path.join(at, name), root) + '/': '' for at, names, _ in os.walk(root) for name in names}


def stream_reasons(root, saved):
    for path in trials.files_below(root):
        for name in os.listxattr(path):
            beside = os.path.join(saved, os.path.relpath(path, root) + '#' + name[len('user.'):])
            if name.startswith(OURS) or not os.path.exists(beside):
                continue
            try:
                if os.getxattr(path, name) != trials.bytes_of(beside):
                    yield f'another stream: {beside}'
            except OSError as fault:
                if fault.errno != errno.E2BIG or os.path.getsize(beside) <= 65536:
                    yield f'a stream fails: {beside}'


def partitions(image):
    done = subprocess.run([trials.program(), 'partitions', image, '--json'], capture_output=True)
    return [str(part['number']) for part in json.loads(done.stdout)]


def compare(part, image, more, folder):
    saved, copied, streams = (os.path.join(folder, name) for name in ('saved', 'copied', 'streams'))
    for target, extra in ((saved, []), (streams, ['--streams'])):
        trials.run(['save', image, *more, *extra, '--to', target], folder)
        os.makedirs(target, exist_ok=True)
    reasons = []
    with mounted([image, *more], folder) as run:
        copy = subprocess.run(['cp', '-r', '--preserve=timestamps', run.root + '/.', copied], capture_output=True, text=True)
        reasons += stream_reasons(run.root, streams)
    right, found = picture(saved), picture(copied)
    reasons += [f'differs: {path}' for path in right.keys() | found.keys() if right.get(path) != found.get(path)]
    part.judge(trials.Outcome(['mount', image, *more], {}, run.returncode, b'', run.told + copy.stderr), reasons)


def same_as_save():
    part = trials.Part('mount: as saved')
    for name in sorted(os.listdir(os.path.join(trials.BUILD, 'volumes'))):
        image = os.path.join(trials.BUILD, 'volumes', name)
        for number in partitions(image):
            for more in ([], ['--deleted']):
                folder = tempfile.mkdtemp(dir=trials.scratch())
                compare(part, image, ['-p', number, *more], folder)
                shutil.rmtree(folder)
    return part


def largest(image, folder):
    """Path and bytes of a file that lies somewhere in the image, and where its 12th page does."""
    trials.run(['save', image, '-p', '1', '--existing', '--to', os.path.join(folder, 'out')], folder)
    whole = trials.bytes_of(image)
    for path in sorted(trials.files_below(os.path.join(folder, 'out')), key=os.path.getsize, reverse=True):
        right = trials.bytes_of(path)
        at = whole.find(right[11 * PAGE:12 * PAGE])
        if at > 0 and whole.count(right[11 * PAGE:12 * PAGE]) == 1:
            return os.path.relpath(path, os.path.join(folder, 'out')), right, at
    raise RuntimeError('no file to try')


def lost_steps(path, right, step, flags):
    """Which steps of a file can't be read; -1 for one that has other bytes."""
    lost = []
    file = os.open(path, os.O_RDONLY | flags)
    room = mmap.mmap(-1, step)
    for at in range(0, len(right), step):
        try:
            got = os.preadv(file, [room], at)
            if room[:got] != right[at:at + step]:
                lost.append(-1)
        except OSError as fault:
            lost.append(at // step if fault.errno == errno.EIO else -2)
    os.close(file)
    return lost


def failing():
    part = trials.Part('mount: failing media')
    folder = tempfile.mkdtemp(dir=trials.scratch())
    image = trials.volume('basic')
    name, right, at = largest(image, folder)
    fault = {'FAULT_UNDER': image, 'FAULT_CALLS': 'read'}
    with mounted([image, '-p', '1'], folder, dict(fault, FAULT_BAD=f'{at + 700} 1')) as run:
        path = os.path.join(run.root, name)
        found = lost_steps(path, right, PAGE, 0), lost_steps(path, right, SECTOR, os.O_DIRECT), os.path.getsize(path)
    wanted = [11], [11 * PAGE // SECTOR + 1], len(right)
    part.judge(trials.Outcome(['mount'], fault, run.returncode, b'', run.told), [f'lost {found}'] if found != wanted else [])
    with mounted([image, '-p', '1'], folder, dict(fault, FAULT_AT='40', FAULT_HOW='gone')) as run:
        faults = collections.Counter()
        for path in trials.files_below(run.root):
            try:
                trials.bytes_of(path)
            except OSError as failure:
                faults[failure.errno] += 1
    reasons = [] if set(faults) == {errno.EIO} else [f'a medium that is gone gives {faults}']
    part.judge(trials.Outcome(['mount'], fault, run.returncode, b'', run.told), reasons)
    return part


def is_mounted(root):
    with open('/proc/mounts') as lines:
        return any(f' {root} ' in line for line in lines)


def gone_reasons(run, seconds=20):
    end = time.monotonic() + seconds
    while is_mounted(run.root) and time.monotonic() < end:
        time.sleep(0.02)
    if is_mounted(run.root):
        yield 'a stale mount'
    try:
        if os.listdir(run.root):
            yield 'the folder is not empty'
    except OSError as fault:
        yield f'the folder is lost: {fault}'


ENDS = {'term': lambda run: run.terminate(), 'interrupt': lambda run: run.send_signal(signal.SIGINT), 'kill': lambda run: run.kill(),
        'unmount': lambda run: subprocess.run(['fusermount3', '-uz', run.root], check=True)}


def ends():
    part = trials.Part('mount: ends')
    image = os.path.join(trials.scratch(), 'comma, \\and so on.img')
    shutil.copy(trials.volume('bigfolder'), image)
    for how, end in ENDS.items():
        folder = tempfile.mkdtemp(dir=trials.scratch())
        with mounted([image, '-p', '1'], folder, {'FAULT_UNDER': image, 'FAULT_CALLS': 'read', 'FAULT_SLOW': '2000'}) as run:
            readers = [subprocess.Popen(['sh', '-c', f'cat "{run.root}"/*/* >/dev/null 2>&1']) for _ in range(3)]
            with open(next(iter(trials.files_below(run.root)))):
                time.sleep(0.3)
                end(run)
                time.sleep(0.1)
            reasons = list(gone_reasons(run))
            for reader in readers:
                try:
                    reader.wait(timeout=20)
                except subprocess.TimeoutExpired:
                    reader.kill()
                    reasons.append('a reader hangs')
            try:
                run.wait(timeout=20)
            except subprocess.TimeoutExpired:
                reasons.append('the program hangs')
        status = 0 if how == 'kill' and run.returncode == -signal.SIGKILL else run.returncode
        part.judge(trials.Outcome(['mount', how], {}, status, b'', run.told), reasons + ([f'status {status}'] if status else []))
    return part


def own_folders():
    """As the desktop program mounts: the folder goes with the mount, and that with whoever wanted it."""
    part = trials.Part('mount: own folders')
    for how, end in {**ENDS, 'lone': lambda run: run.stdin.close()}.items():
        folder = tempfile.mkdtemp(dir=trials.scratch())
        scan, root = os.path.join(folder, 'scan.tht'), os.path.join(folder, 'mnt')
        trials.run(['scan', trials.volume('basic'), '-p', '1', '--save-info', scan], folder)
        os.mkdir(root)
        run = subprocess.Popen([os.path.join(trials.BUILD, 'th-ntfs'), '--mount-scan', scan, root], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                               env=dict(os.environ, TMPDIR=trials.work_folder(folder)))
        run.root, reasons = root, []
        if run.stdout.readline() != b'mounted\n':
            reasons.append('not mounted')
        reader = subprocess.Popen(['sleep', '60'], cwd=root)
        end(run)
        reasons += [reason for reason in gone_reasons(run) if 'lost' not in reason]
        reader.kill()
        run.wait(timeout=20)
        limit = time.monotonic() + 5
        while os.path.exists(root) and time.monotonic() < limit:
            time.sleep(0.02)
        part.judge(trials.Outcome(['mount-scan', how], {}, 0, b'', ''), reasons + ['the folder stays'] * os.path.exists(root))
    return part


def parts():
    missing = [word for word in ('fusermount3', 'cp') if not shutil.which(word)]
    if missing or not os.access('/dev/fuse', os.R_OK | os.W_OK):
        trials.say(f'mounts: skipped, since {" and ".join(missing) or "/dev/fuse"} is missing')
        return
    yield same_as_save()
    yield failing()
    yield ends()
    if os.path.exists(os.path.join(trials.BUILD, 'th-ntfs')):
        yield own_folders()
