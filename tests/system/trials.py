"""What the trials share: runs of the program with one call gone wrong, trees of files, and the account of both."""
import collections
import concurrent.futures
import functools
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.realpath(os.path.join(os.path.dirname(__file__), '..', '..'))
BUILD = os.path.join(ROOT, 'build', 'release')
LOGS = os.path.join(ROOT, 'build', 'system')
PROGRAM = os.path.join(BUILD, 'th-ntfs-cli')
LIBRARY = os.path.join(BUILD, 'tests', 'system', 'faulty-calls.so')
REASON_LENGTH = 500  # of the log
TIMEOUT = 120  # seconds; a run takes well below one
MEMORY = '/dev/shm'  # where it has room, the trials don't wear a disk
MEMORY_NEEDED = 2 << 30


def volume(name):
    return os.path.join(BUILD, 'volumes', name + '.img')


def say(text):
    print(text, file=sys.stderr)


class Outcome:
    """One run of the program."""

    def __init__(self, words, fault, status, out, err):
        self.words, self.fault, self.status, self.err = words, fault, status, err
        self.out = out
        try:
            self.totals = json.loads(out)
        except ValueError:
            self.totals = {}

    def __str__(self):
        fault = ' '.join(f'{name}={value}' for name, value in self.fault.items())
        return f'{fault} th-ntfs-cli {" ".join(self.words)} -> {self.status}'


def run(words, folder, under='', calls='', at=0, how='', listed=None):
    """Runs the program with folder/work as its temporary folder. Words are paths and options."""
    fault = {}
    if under:
        fault = {'FAULT_UNDER': under, 'FAULT_CALLS': calls, 'FAULT_AT': str(at), 'FAULT_HOW': how}
    env = dict(os.environ, TMPDIR=work_folder(folder), **fault)
    if fault:
        env['LD_PRELOAD'] = LIBRARY
    if listed:
        env['FAULT_LIST'] = listed
    try:
        done = subprocess.run([program(), *words], env=env, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=TIMEOUT)
        status, out, err = done.returncode, done.stdout, done.stderr
    except subprocess.TimeoutExpired as hang:
        status, out, err = 'no end', hang.stdout or b'', hang.stderr or b''
    return Outcome(words, fault, status, out, err.decode(errors='replace'))


def listing(words, folder, under, calls):
    """The run without a fault, and its calls as lists of words."""
    path = os.path.join(folder, 'calls')
    outcome = run(words, folder, under, calls, listed=path)
    with open(path, errors='surrogateescape') as lines:
        found = [line.rstrip('\n').split('\t') for line in lines]
    if outcome.status not in (0, 3) or not found:
        sys.exit(f'The run without a fault failed: {outcome}\n{outcome.err}')
    return outcome, found


def work_folder(folder):
    path = os.path.join(folder, 'work')
    os.makedirs(path, exist_ok=True)
    return path


def spread(count, wanted):
    """At most `wanted` numbers of 1..count, evenly."""
    return sorted({1 + i * count // wanted for i in range(wanted)}) if count > wanted else range(1, count + 1)


def bytes_of(path):
    with open(path, 'rb') as file:
        return file.read()


def digest(path):
    return hashlib.sha256(bytes_of(path)).hexdigest()


def files_below(folder):
    return [os.path.join(at, name) for at, _, names in os.walk(folder) for name in names]


def tree(folder):
    """Contents by path. Files that share a path but for ' (2)' and its like are one set: their numbers may change."""
    found = collections.defaultdict(collections.Counter)
    for path in files_below(folder):
        key = re.sub(r' \(\d+\)(?=(\.[^./]*)?(/|$))', '', os.path.relpath(path, folder))
        found[key][digest(path)] += 1
    return found


class Part:
    """The account of one part of the trials. Its log names each run and what was dishonest about it."""

    def __init__(self, name):
        self.name, self.runs = name, 0
        self.reasons = collections.Counter()
        self.statuses = collections.Counter()
        os.makedirs(LOGS, exist_ok=True)
        self.log = open(os.path.join(LOGS, name.replace(' ', '-') + '.log'), 'w', errors='surrogateescape')

    def judge(self, outcome, reasons):
        """Takes one run; `reasons` tells what was wrong with it, if anything."""
        reasons = list(reasons)
        if outcome.status == 'no end' or (isinstance(outcome.status, int) and outcome.status > 3) or (
                isinstance(outcome.status, int) and outcome.status < 0 and
                outcome.fault.get('FAULT_HOW') not in ('kill', 'torn')):
            reasons.append('crash or hang')
        self.runs += 1
        self.statuses[outcome.status] += 1
        self.log.write(f'{"; ".join(reasons)[:REASON_LENGTH] or "honest"}\t{outcome}\n')
        if reasons:
            self.reasons[re.sub(r'[:(].*', '', reasons[0])] += 1
            self.log.write('    ' + outcome.err.replace('\n', '\n    ') + '\n')

    def row(self):
        dishonest = sum(self.reasons.values())
        row = f'{self.name:32} {self.runs:6} {self.runs - dishonest:7} {dishonest:9}'
        return '\n'.join([row] + [f'    {count:5} {reason}' for reason, count in self.reasons.most_common()])


def in_parallel(function, trials):
    """function(trial, folder) for each, with a folder of its own; gives the results in the order of the trials."""
    def alone(trial):
        folder = tempfile.mkdtemp(dir=scratch())
        try:
            return function(trial, folder)
        finally:
            shutil.rmtree(folder, ignore_errors=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        yield from pool.map(alone, trials)


def scratch():
    """A folder for all that the trials make, removed by `clean`."""
    global made
    if made is None:
        space = os.statvfs(MEMORY) if os.access(MEMORY, os.W_OK) else None
        roomy = space is not None and space.f_bavail * space.f_frsize > MEMORY_NEEDED
        made = tempfile.mkdtemp(prefix='th-ntfs-system-', dir=MEMORY if roomy else None)
    return made


@functools.cache
def program():
    """A copy, since a build may go on meanwhile."""
    return shutil.copy(PROGRAM, scratch())


def clean():
    if made is not None:
        shutil.rmtree(made, ignore_errors=True)


made = None
