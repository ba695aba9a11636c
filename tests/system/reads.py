"""Every read of a scan and a save fails in turn; what was saved is compared with what a run without a fault saves."""
import os
import re
import trials

VOLUMES = (('basic', '1'), ('compressed', '1'), ('mftfrag', '2'))
HOWS = ('once', 'short', 'sector', 'range', 'gone')
HEALED = ('once', 'short')
SAVE_READS = 400
TURBO_READS = 80
SCAN_READS = 80
SECTOR = 512
GENERAL = re.compile(r"(?i)could(n't| not) be read|can't be (read|located)|stopped|not found|no ntfs volume|not ready")
EVENT = 'Drive access error'  # tells of a read as it fails, healed or not


def bad_zeros(image, read, number, how):
    """Whether the bytes that can't be read are zeros anyway, so that their loss can't show."""
    offset, size = int(read[2]), int(read[3])
    if how == 'sector':
        offset += number * 7 % max(size // SECTOR, 1) * SECTOR
        size = SECTOR
    with open(image, 'rb') as file:
        file.seek(offset)
        return not any(file.read(size))


class Difference:
    """What a tree of files has otherwise than the right one."""

    def __init__(self, right, found):
        self.changed, self.missing = [], []
        for key, contents in right.items():
            lost = contents - found.get(key, contents - contents)
            other = found[key] - contents if key in found else None
            if lost:
                (self.changed if other else self.missing).append(key)
        self.added = [key for key in found if key not in right]

    def any(self):
        return bool(self.changed or self.missing or self.added)


def said(outcome, plain):
    """The lines of standard error that the run without a fault doesn't have."""
    usual = set(plain.err.splitlines())
    return [line for line in outcome.err.splitlines() if line not in usual]


def save_reasons(outcome, plain, difference, harmless):
    lines, how = said(outcome, plain), outcome.fault['FAULT_HOW']
    verdicts = [line for line in lines if not line.startswith(EVENT)]
    totals = outcome.totals
    named = '\n'.join(lines)
    calm = outcome.status == plain.status and totals == plain.totals and not verdicts
    gone = difference.missing + difference.added
    if difference.any() and (outcome.status == 0 or calm):
        yield f'differences without a word: {difference.changed + gone}'
    for key in difference.changed:
        if os.path.basename(key) not in named:
            yield f'a file with wrong bytes is not named: {key}'
    if gone and not GENERAL.search(named):
        for key in difference.missing:
            if os.path.basename(key) not in named:
                yield f'a missing file is not named, nor unread records: {key}'
    if totals.get('complete') and len(gone) > totals['failed']:
        yield f'complete, with files missing: {gone}'
    if not totals and outcome.status != 1:
        yield 'no totals'
    if how in HEALED and not calm:
        yield f'a healed read is held against the result: {verdicts}'
    damaged = totals.get('damaged', 0)
    if damaged - plain.totals['damaged'] > len(difference.changed) and not harmless:
        yield f'called damaged, bytes are right: {lines}'
    if outcome.status == 0 and damaged:
        yield 'status 0 with damage'
    if outcome.status != plain.status and not lines:
        yield 'a failure without a word'


def scan_reasons(outcome, plain):
    totals = dict(outcome.totals)
    complete = totals.pop('complete', None)
    right = {name: value for name, value in plain.totals.items() if name in totals and name != 'complete'}
    differs = {name: value for name, value in totals.items() if name in right} != right
    if differs and (outcome.status == 0 or complete):
        yield f'complete or status 0 with other totals: {totals}'
    if not totals and outcome.status != 1:
        yield 'no totals'
    verdicts = [line for line in said(outcome, plain) if not line.startswith(EVENT)]
    if outcome.fault['FAULT_HOW'] in HEALED and (outcome.status != 0 or verdicts):
        yield f'a healed read is held against the result: {verdicts}'
    if outcome.status != 0 and not said(outcome, plain):
        yield 'a failure without a word'


def save_words(name, partition, more, folder):
    return ['save', trials.volume(name), '-p', partition, '--json', '--to', os.path.join(folder, 'out'), *more]


def fail_saves(part, name, partition, more, most):
    image = trials.volume(name)

    def plain_run(_, folder):
        plain, reads = trials.listing(save_words(name, partition, more, folder), folder, image, 'read')
        plain.totals.pop('target')
        return plain, reads, trials.tree(os.path.join(folder, 'out'))
    plain, reads, right = next(trials.in_parallel(plain_run, [None]))

    def failing(trial, folder):
        at, how = trial
        outcome = trials.run(save_words(name, partition, more, folder), folder, image, 'read', at, how)
        outcome.totals.pop('target', None)
        return outcome, Difference(right, trials.tree(os.path.join(folder, 'out')))
    wanted = [(at, how) for at in trials.spread(len(reads), most) for how in HOWS]
    for (at, how), (outcome, difference) in zip(wanted, trials.in_parallel(failing, wanted)):
        harmless = how in ('sector', 'range') and bad_zeros(image, reads[at - 1], at, how)
        part.judge(outcome, save_reasons(outcome, plain, difference, harmless))


def fail_scans(part, name, partition):
    image = trials.volume(name)
    words = ['scan', image, '-p', partition, '--json']
    plain, reads = next(trials.in_parallel(lambda _, folder: trials.listing(words, folder, image, 'read'), [None]))
    wanted = [(at, how) for at in trials.spread(len(reads), SCAN_READS) for how in HOWS]
    for outcome in trials.in_parallel(lambda trial, folder: trials.run(words, folder, image, 'read', *trial), wanted):
        part.judge(outcome, scan_reasons(outcome, plain))


def parts():
    for name, partition in VOLUMES:
        part = trials.Part(f'reads of save, {name}')
        fail_saves(part, name, partition, [], SAVE_READS)
        yield part
    part = trials.Part('reads of save with turbo')
    for name, partition in VOLUMES:
        fail_saves(part, name, partition, ['--turbo'], TURBO_READS)
    yield part
    part = trials.Part('reads of scan')
    for name, partition in VOLUMES:
        fail_scans(part, name, partition)
    yield part
