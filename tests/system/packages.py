"""The Debian packages in a bare Debian: built, installed, used by somebody who isn't root, and purged without a trace."""
import collections
import json
import lzma
import os
import shutil
import subprocess
import tempfile

import trials

SUITE = 'bookworm'
NAMES = ('th-ntfs', 'th-ntfs-cli')
# What Debian's own tools keep for themselves, and what a user has made.
OTHERS = ('proc', 'sys', 'dev', 'run', 'tmp', 'debs', 'home', 'var/lib/dpkg', 'var/lib/apt', 'var/cache', 'var/log')
USED = '''
set -e
cd
umask 022
th-ntfs-cli --version
th-ntfs-cli save /debs/sample.img --to back --json
QT_QPA_PLATFORM=offscreen th-ntfs --version
for page in 1/th-ntfs 1/th-ntfs-cli 5/th-ntfs-tree-scan-info 5/th-ntfs-image 5/th-ntfs-sibling-tool; do
    man --warnings "${page%%/*}" "${page#*/}" 2>&1 >page | grep . && exit 1
    grep -q '^NAME' page
done
whatis th-ntfs-image | grep -q map
bash -ec '. /usr/share/bash-completion/bash_completion
    _completion_loader th-ntfs-cli || [ $? -eq 124 ]
    complete -p th-ntfs-cli'
# Its window, with the wish for tips as a new user has it, until it is told to end.
mkdir -m 700 own
status=0
XDG_RUNTIME_DIR=$PWD/own QT_QPA_PLATFORM=offscreen timeout 5 th-ntfs /debs/sample.img || status=$?
[ $status -eq 124 ] || [ $status -eq 0 ]
'''


class Bare:
    """A Debian of its own. What runs in it sees its own processes alone, and no mount of it stays."""

    def __init__(self, folder):
        self.folder = folder
        self.home = os.path.join(folder, 'home', 'stranger')

    def run(self, part, name, *words):
        return step(part, name, 'unshare', '--mount', '--pid', '--fork', '--mount-proc=' + self.folder + '/proc',
                    'chroot', self.folder, 'env', '-i', 'PATH=/usr/sbin:/usr/bin:/sbin:/bin', 'LC_ALL=C.UTF-8',
                    'DEBIAN_FRONTEND=noninteractive', *words)

    def files(self):
        """Each path with its bytes' hash, or with where it leads."""
        found = {}
        for at, folders, names in os.walk(self.folder):
            inside = os.path.relpath(at, self.folder)
            folders[:] = [name for name in folders if os.path.normpath(os.path.join(inside, name)) not in OTHERS]
            for name in folders + names:
                path = os.path.join(at, name)
                found[os.path.relpath(path, self.folder)] = (
                    os.readlink(path) if os.path.islink(path) else trials.digest(path) if name in names else '')
        return found


def step(part, name, *words):
    """Runs it; it is honest if it ends with 0. Tells whether it did."""
    done = subprocess.run(words, stdin=subprocess.DEVNULL, capture_output=True)
    outcome = trials.Outcome([name], {}, min(done.returncode, 3), done.stdout,
                             (done.stdout + done.stderr).decode(errors='replace'))
    part.judge(outcome, [] if done.returncode == 0 else [f'{name} failed'])
    return done.returncode == 0


def told(part, name, reasons):
    """A step that has been looked at here."""
    part.judge(trials.Outcome([name], {}, 0, b'', '\n'.join(reasons)), [f'{name}: {", ".join(reasons)}'] if reasons else [])


def saved_as_it_was(bare):
    with open(os.path.join(trials.ROOT, 'samples', 'sample.json')) as file:
        wanted = [entry['sha256'] for entry in json.load(file)['volumes'][0] if not entry['folder'] and entry['listed']]
    found = [digest for counts in trials.tree(os.path.join(bare.home, 'back')).values() for digest in counts.elements()]
    missing = collections.Counter(wanted) - collections.Counter(found)
    return [f'{missing.total()} files are missing or have other bytes'] if missing else []


def trial(part, bare, packages):
    depends = ', '.join(subprocess.check_output(['dpkg-deb', '-f', package, 'Depends'], text=True).strip() for package in packages)
    bare.run(part, 'apt-get update', 'apt-get', '-q', 'update')
    bare.run(part, 'what the packages need', 'apt-get', '-qy', '--no-install-recommends', 'satisfy', depends)
    bare.run(part, 'what they are tried with', 'apt-get', '-qy', '--no-install-recommends', 'install', 'man-db',
             'bash-completion', 'shared-mime-info', 'desktop-file-utils', 'hicolor-icon-theme', 'zsh', 'fish')
    bare.run(part, 'a user', 'useradd', '--create-home', 'stranger')
    before = bare.files()
    if not bare.run(part, 'install', 'apt-get', '-qy', '--no-install-recommends', 'install', *('/debs/' + os.path.basename(path) for path in packages)):
        return
    bare.run(part, 'use', 'runuser', '--login', 'stranger', '--command', USED)
    told(part, 'saved files', saved_as_it_was(bare))
    bare.run(part, 'types of files', 'grep', '-q', 'x-th-ntfs-tree-info=net.tarnholt.th_ntfs.desktop', '/usr/share/applications/mimeinfo.cache')
    bare.run(part, 'purge', 'apt-get', '-qy', 'purge', *NAMES)
    after = bare.files()
    told(part, 'traces', sorted(path for path in before.keys() | after.keys() if before.get(path) != after.get(path)))


def parts():
    missing = [tool for tool in ('debootstrap', 'dpkg-deb', 'unshare') if not shutil.which(tool)]
    if missing or os.geteuid() != 0:
        trials.say(f'packages: skipped, since {" and ".join(missing) or "root"} is missing')
        return
    folder = tempfile.mkdtemp(prefix='th-ntfs-bare-', dir='/var/tmp')
    os.chmod(folder, 0o755)  # it is a root folder, also for who isn't root
    try:
        made = subprocess.run(['debootstrap', '--variant=minbase', SUITE, folder], capture_output=True)
        if made.returncode != 0:
            trials.say('packages: skipped, since debootstrap gets no Debian here (is there a network?)')
            return
        part = trials.Part('packages')
        if step(part, 'scripts/make-packages', os.path.join(trials.ROOT, 'scripts', 'make-packages')):
            packages = sorted(path for path in trials.files_below(os.path.join(trials.ROOT, 'build', 'packages')))
            os.mkdir(os.path.join(folder, 'debs'))
            for path in packages:
                shutil.copy(path, os.path.join(folder, 'debs'))
            with lzma.open(os.path.join(trials.ROOT, 'samples', 'sample.img.xz')) as packed, \
                    open(os.path.join(folder, 'debs', 'sample.img'), 'wb') as image:
                shutil.copyfileobj(packed, image)
            if shutil.which('lintian'):
                step(part, 'lintian', 'lintian', '--fail-on', 'error,warning',
                     '--suppress-tags', 'initial-upload-closes-no-bugs', *packages)
            trial(part, Bare(folder), packages)
        yield part
    finally:
        shutil.rmtree(folder)
