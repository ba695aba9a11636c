"""A user without rights opens a disk through the real disk service: rules that allow it, rules that forbid it, no service.

A private copy of the machine's services runs in namespaces of its own: its own /run, /dev and network, polkit rules and
device manager's rules that are nobody else's. Nothing of the machine's own is touched but for three loop devices.
"""
import json
import os
import pty
import shutil
import subprocess
import sys
import termios
import threading
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import trials

DAEMONS = (['/lib/systemd/systemd-udevd'], ['dbus-daemon', '--system', '--nofork', '--nopidfile'],
           ['/usr/lib/polkit-1/polkitd', '--no-debug'], ['/usr/libexec/udisks2/udisksd'])
HELPER = 'th-ntfs-open-disk'
SERVICE = 'org.freedesktop.UDisks2'
BUS = 'unix:path=/run/dbus/system_bus_socket'
NOBODY = ['setpriv', '--reuid', '65534', '--regid', '65534', '--clear-groups']
NODES = ['null', 'zero', 'full', 'random', 'urandom', 'tty', 'loop-control', 'fuse']
WAIT = 20  # seconds, for what a service does
loops, daemons = [], []


def missing():
    needed = [daemon[0] for daemon in DAEMONS] + ['unshare', 'losetup', 'setpriv', 'gdbus', os.path.join(trials.BUILD, HELPER)]
    return 'not root' if os.geteuid() != 0 else ', '.join('no ' + name for name in needed if shutil.which(name) is None)


def parts():
    if why := missing():
        trials.say(f'diskservice: skipped: {why}')
        return
    folder = trials.scratch()
    os.chmod(folder, 0o755)
    for name in ('th-ntfs-cli', 'th-ntfs', HELPER, 'tests/test_wizard', 'tests/test_frame'):
        shutil.copy(os.path.join(trials.BUILD, name), folder)
    done = subprocess.run(['unshare', '-m', '-n', '--propagation', 'private', sys.executable, __file__, folder],
                          stdout=subprocess.PIPE, text=True)
    part = trials.Part('diskservice')
    for line in [*done.stdout.splitlines(), json.dumps(['the services', done.returncode, '', done.returncode != 0])]:
        words, status, err, wrong = json.loads(line)
        part.judge(trials.Outcome([words], {}, status, b'', err), ['not as it should be'] * wrong)
    yield part


# What follows runs in the namespaces.

def shell(*words):
    return subprocess.run(words, check=True, capture_output=True, text=True).stdout.strip()


def knows(name, path='/', shows=''):
    """Whether an object is on the bus, for which it is waited."""
    end = time.monotonic() + WAIT
    while time.monotonic() < end:
        told = subprocess.run(['gdbus', 'introspect', '--system', '-d', name, '-o', path], capture_output=True, text=True)
        if told.returncode == 0 and shows in told.stdout:
            return
        time.sleep(0.05)
    sys.exit(f'{name} does not come up')


def start_services(folder):
    dev = os.path.join(folder, 'dev')  # where the device manager may make its links
    os.makedirs(dev)
    shell('mount', '-t', 'tmpfs', '-o', 'mode=755', 'trial', dev)
    disks = [name for name in os.listdir('/sys/block') if 'loop' not in name and os.path.exists(f'/dev/{name}')]
    shell('cp', '-a', *(f'/dev/{name}' for name in NODES + disks), dev)
    for number in range(64):
        shell('mknod', '-m', '660', f'{dev}/loop{number}', 'b', '7', str(number))
    os.makedirs(f'{dev}/pts')
    shell('mount', '-t', 'devpts', '-o', 'newinstance,ptmxmode=666', 'trial', f'{dev}/pts')
    os.symlink('pts/ptmx', f'{dev}/ptmx')
    os.makedirs(f'{dev}/shm')
    shell('mount', '--rbind', '/dev/shm', f'{dev}/shm')
    shell('mount', '--move', dev, '/dev')
    for place in ('/run', '/etc/polkit-1/rules.d', '/etc/udev/rules.d', '/usr/lib/udev/rules.d'):
        shell('mount', '-t', 'tmpfs', '-o', 'mode=755', 'trial', place)
    os.makedirs('/run/dbus')
    for words, name in zip(DAEMONS, (None, 'org.freedesktop.DBus', 'org.freedesktop.PolicyKit1', SERVICE)):
        daemons.append(subprocess.Popen(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        if name:
            knows(name)


def stop_services():
    while daemons:
        daemon = daemons.pop()
        daemon.terminate()
        daemon.wait()


def attach(image, *options):
    """A loop device that the services know, and no other of this machine."""
    loops.append(shell('losetup', '-f', '--show', *options, image))
    name = os.path.basename(loops[-1])
    with open('/usr/lib/udev/rules.d/60-trial.rules', 'a') as rules:
        rules.write(f'SUBSYSTEM=="block", KERNEL=="{name}*", IMPORT{{builtin}}="blkid"\n')
    shell('udevadm', 'control', '--reload')
    shell('udevadm', 'trigger', '--action=add', '--settle', f'--name-match={loops[-1]}')
    knows(SERVICE, f'/org/freedesktop/UDisks2/block_devices/{name}', f'interface {SERVICE}.Block ')
    return loops[-1]


def rule(result):
    with open('/etc/polkit-1/rules.d/10-trial.rules', 'w') as rules:
        rules.write('polkit.addRule(function(action, subject) { if (subject.user == "nobody" && '
                    f'action.id.indexOf("org.freedesktop.udisks2.open-device") == 0) return polkit.Result.{result}; }});\n')
    time.sleep(1)  # for polkitd to read it


def attempt(folder, words, holds, **environment):
    done = subprocess.run([*NOBODY, os.path.join(folder, words[0]), *words[1:]], capture_output=True, cwd='/',
                          stdin=subprocess.DEVNULL, timeout=trials.TIMEOUT,
                          env=dict(os.environ, HOME='/nonexistent', TMPDIR='/tmp', **environment))
    told = (done.stdout + done.stderr).decode(errors='replace')
    print(json.dumps([' '.join(words), done.returncode, told, not holds(done.returncode, told)]), flush=True)


def interrupt(folder, loop):
    """Ctrl+C at the question for a password: what is typed then shows again."""
    terminal, own = pty.openpty()
    os.fchmod(own, 0o666)
    run = subprocess.Popen(['setsid', '-c', *NOBODY, os.path.join(folder, 'th-ntfs-cli'), 'partitions', loop], stdin=own, stdout=own,
                           stderr=own, env=dict(os.environ, TMPDIR='/tmp'))
    shows, end = lambda: termios.tcgetattr(own)[3] & termios.ECHO, time.monotonic() + WAIT
    while shows() and time.monotonic() < end:
        time.sleep(0.05)
    asked = not shows()
    os.write(terminal, b'\x03')
    status = run.wait(timeout=WAIT)
    told = os.read(terminal, 1 << 16).decode(errors='replace')
    print(json.dumps(['Ctrl+C', status, told, not (asked and shows() and status == 1 and 'canceled' in told)]), flush=True)


def main(folder):
    image, target, cloned, plain, out = (os.path.join(folder, name) for name in ('disk', 'target', 'cloned', 'plain', 'out'))
    shutil.copy(trials.volume('basic'), image)
    for blank in (target, cloned):
        with open(blank, 'wb') as file:
            file.write(b'x' * os.path.getsize(image))
    os.makedirs(out)
    os.chmod(out, 0o777)
    program = os.path.join(folder, 'th-ntfs-cli')
    status = subprocess.run([program, 'save', image, '-p', '1', '--to', plain], capture_output=True).returncode
    subprocess.run([program, 'clone', image, cloned, '--yes'], capture_output=True, check=True)
    start_services(folder)
    loop, other = attach(image, '--read-only'), attach(target)
    rule('YES')
    attempt(folder, ['th-ntfs-cli', 'save', loop, '-p', '1', '--to', out],
            lambda got, _: got == status and trials.tree(out) == trials.tree(plain))
    attempt(folder, ['th-ntfs-cli', 'clone', image, other, '--yes'],
            lambda got, _: got == 0 and trials.bytes_of(other) == trials.bytes_of(cloned))
    scan, copy = os.path.join(folder, 'scan.tht'), os.path.join(out, 'copy')
    subprocess.run([program, 'scan', loop, '-p', '1', '--save-info', scan], capture_output=True, check=True)
    os.chmod(scan, 0o644)
    attempt(folder, ['test_frame', '--gtest_filter=LentDiskTrial.*'],
            lambda got, told: got == 0 and '[  PASSED  ] 1 test' in told and trials.tree(copy) == trials.tree(plain),
            THNTFS_TRIAL_SCAN=scan, THNTFS_TRIAL_PROGRAM=os.path.join(folder, 'th-ntfs'), THNTFS_TRIAL_COPY=copy,
            DBUS_SYSTEM_BUS_ADDRESS=BUS)
    late = threading.Timer(3, attach, (image, '--read-only'))
    late.start()
    attempt(folder, ['test_wizard', '--gtest_filter=DiskServiceTrial.*'],
            lambda got, told: got == 0 and '[  PASSED  ] 1 test' in told, THNTFS_TRIAL_DISK=loop,
            DBUS_SYSTEM_BUS_ADDRESS=BUS)
    late.join()
    rule('AUTH_ADMIN')
    interrupt(folder, loop)
    for change, text in ((lambda: rule('NO'), "doesn't let this user"),
                         (lambda: rule('AUTH_ADMIN'), "doesn't let this user"),  # nobody asks for a password here
                         (stop_services, 'with sudo'), (lambda: os.remove(os.path.join(folder, HELPER)), 'with sudo')):
        change()
        attempt(folder, ['th-ntfs-cli', 'partitions', loop], lambda got, told, text=text: got == 1 and text in told)


if __name__ == '__main__':
    try:
        main(sys.argv[1])
    finally:
        stop_services()
        for device in loops:
            shell('losetup', '-d', device)
