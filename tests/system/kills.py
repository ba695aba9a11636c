"""Each command is killed at moments between its reads and writes; what stands there then, and after the next run."""
import os
import re
import shutil
import reads
import trials

IMAGE = trials.volume('basic')
LARGE = trials.volume('record4k')  # has files above 1 MiB
PIECES = trials.volume('mftfrag')  # takes many reads to scan
MOMENTS = 100
WHOLE_ABOVE = 1 << 20  # bytes; such a file has its name only when it is whole
UNFINISHED = re.compile(r'\.(part|new)\d*$')
OLDER = b'what stood here before\n'


class Killed:
    """One command with its target folder: what a killed run may leave, and what the next one must make of it."""

    def __init__(self, name, source, words, product=None, older=None):
        self.name, self.source, self.words, self.product, self.older = name, source, words, product, older

    def prepare(self, target):
        if self.older is not None:
            with open(os.path.join(target, self.product), 'wb') as file:
                file.write(self.older)

    def again(self, target):
        """The words of the run after the kill."""
        return self.words

    def reasons_then(self, target, right):
        if self.older is not None:
            now = trials.digest(os.path.join(target, self.product))
            if now not in (right_sum(right, self.product), sum_of(self.older)):
                yield 'neither the older file nor the new one'

    def reasons_after(self, target, right):
        if trials.tree(target) != right:
            difference = reads.Difference(right, trials.tree(target))
            yield f'wrong after the next run: {difference.changed + difference.missing + difference.added}'


class KilledSave(Killed):
    def reasons_then(self, target, right):
        sums = {digest for contents in right.values() for digest in contents}
        for path in trials.files_below(target):
            if os.path.getsize(path) > WHOLE_ABOVE and not UNFINISHED.search(path) and trials.digest(path) not in sums:
                yield f'half a file under its final name: {path}'

    def reasons_after(self, target, right):
        found = trials.tree(target)
        lost = [key for key, contents in right.items() if contents - found[key]]
        strange = [key for key in found if key not in right]
        if lost or strange:
            yield f'wrong after the next run: lost {lost}, left {strange}'


class KilledImage(Killed):
    def again(self, target):
        there = os.path.exists(os.path.join(target, self.product))
        return [*self.words, *(['--resume'] if there and '--resume' not in self.words else [])]

    def reasons_after(self, target, right):
        if trials.digest(os.path.join(target, self.product)) != right_sum(right, self.product):
            yield 'another image after the next run'
        if sorted(os.listdir(target)) != [self.product, self.product + '.map']:
            yield f'left after the next run: {sorted(os.listdir(target))}'


class KilledResume(KilledImage):
    """Begins with what a first run had left when it was killed halfway."""
    half = None

    def prepare(self, target):
        if self.half is None:
            plain = [word for word in self.words if word != '--resume']
            folder = os.path.join(trials.scratch(), 'half')
            os.makedirs(os.path.join(folder, 'target'))
            words = in_target(plain, os.path.join(folder, 'target'))
            _, calls = trials.listing(words, folder, os.path.join(folder, 'target'), 'write')
            shutil.rmtree(os.path.join(folder, 'target'))
            os.makedirs(os.path.join(folder, 'target'))
            trials.run(words, folder, os.path.join(folder, 'target'), 'write', len(calls) // 2, 'kill')
            self.half = os.path.join(folder, 'target')
        shutil.copytree(self.half, target, dirs_exist_ok=True)


class KilledClone(Killed):
    def prepare(self, target):
        with open(os.path.join(target, self.product), 'wb') as file:
            file.write(b'\xAA' * (os.path.getsize(self.source) + (1 << 20)))


COMMANDS = (
    Killed('scan', PIECES, ['scan', PIECES, '-p', '2']),
    KilledSave('save', LARGE, ['save', LARGE, '-p', '1', '--to', 'TARGET']),
    KilledImage('image', IMAGE, ['image', IMAGE, 'TARGET/disk.img'], 'disk.img'),
    KilledResume('image --resume', IMAGE, ['image', IMAGE, 'TARGET/disk.img', '--resume'], 'disk.img'),
    Killed('scan --save-info', PIECES, ['scan', PIECES, '-p', '2', '--save-info', 'TARGET/i.tht'], 'i.tht', OLDER),
    Killed('partitions thorough', IMAGE,
           ['partitions', IMAGE, '--search', 'thorough', '--save-info', 'TARGET/i.thd'], 'i.thd', OLDER),
    KilledClone('clone', IMAGE, ['clone', IMAGE, 'TARGET/disk', '--yes'], 'disk'),
)


def sum_of(content):
    return trials.hashlib.sha256(content).hexdigest()


def right_sum(right, name):
    return next(iter(right[name]))


def in_target(words, target):
    return [word.replace('TARGET', target) for word in words]


def begin(command, folder):
    target = os.path.join(folder, 'target')
    os.makedirs(target)
    command.prepare(target)
    return target, ':'.join((command.source, target, trials.work_folder(folder)))


def kill(part, command):
    def plain_run(_, folder):
        target, under = begin(command, folder)
        _, calls = trials.listing(in_target(command.words, target), folder, under, 'all')
        return len(calls), trials.tree(target)
    count, right = next(trials.in_parallel(plain_run, [None]))
    source = trials.digest(command.source)

    def killing(trial, folder):
        at, how = trial
        target, under = begin(command, folder)
        outcome = trials.run(in_target(command.words, target), folder, under, 'all', at, how)
        reasons = ['ended before its kill'] if outcome.status != -9 else []
        reasons += command.reasons_then(target, right)
        second = trials.run(in_target(command.again(target), target), folder)
        if second.status != 0:
            reasons.append(f'the next run fails: {second.status} {second.err}')
        else:
            reasons += command.reasons_after(target, right)
        if os.listdir(trials.work_folder(folder)):
            reasons.append(f'work folder left: {os.listdir(trials.work_folder(folder))}')
        return outcome, reasons
    wanted = [(at, 'torn' if i % 2 else 'kill') for i, at in enumerate(trials.spread(count, MOMENTS))]
    for outcome, reasons in trials.in_parallel(killing, wanted):
        part.judge(outcome, reasons)
    if trials.digest(command.source) != source:
        part.judge(trials.Outcome(command.words, {}, 0, b'', ''), ['the source has changed'])


def parts():
    for command in COMMANDS:
        part = trials.Part(f'kills of {command.name}')
        kill(part, command)
        yield part
