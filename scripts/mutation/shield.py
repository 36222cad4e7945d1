"""Running what may do harm: a faulty program that deletes folders must not reach this machine's.

A command runs in a mount namespace of its own. Everything is read-only there; folders for temporary
files, empty and in memory, go with it when it ends.
"""
import os
import signal
import subprocess
import time
from dataclasses import dataclass

# $1: a folder that may be written, or nothing; $2: where the temporary files go. /dev/shm is new
# too, so that there are two file systems. A runaway gets $3 seconds of a processor, however busy
# the machine is, no core file, 4 GiB unless it lifts that itself, files of 256 MiB.
PREPARE = r"""
set -e
own=$1 stores=$2 seconds=$3
shift 3
[ -z "$own" ] || mount --bind "$own" "$own"
mount -t tmpfs -o mode=1777,size=1g stores "$stores"
case $own/ in
  /dev/shm/*) ;;
  *) mount -t tmpfs -o mode=1777,size=1g shm /dev/shm ;;
esac
while read -r _ _ _ _ place _; do
  case $place in
    "$own" | "$stores" | "$stores"/* | /dev/shm | /proc | /proc/* | /sys | /sys/*) ;;
    *) mount -o remount,bind,ro "$place" 2>/dev/null || [ ! -w "$place" ] ;;
  esac
done </proc/self/mountinfo
cd "${own:-$stores}"
export TMPDIR="$stores"
ulimit -t "$seconds"
ulimit -c 0
ulimit -S -v 4194304
ulimit -f 524288
"""


@dataclass
class Ran:
    """What a command came to; `seconds` it took, `in_time` unless its time ran out."""

    status: int
    output: str
    seconds: float
    in_time: bool

    @property
    def is_good(self):
        return self.status == 0 and self.in_time


TIME_IS_UP = (-signal.SIGXCPU, 128 + signal.SIGXCPU, -signal.SIGKILL)


def shielded(command, seconds, work, own):
    stores = next(place for place in ("/tmp", "/mnt", "/srv", "/media")
                  if os.path.isdir(place) and not str(work).startswith(place + "/"))
    as_root, start = [], 'exec "$@"'
    if os.getuid() != 0:
        as_root = ["--map-root-user"]
        start = f'exec unshare --user --map-user={os.getuid()} --map-group={os.getgid()} "$@"'
    shell = ["sh", "-c", PREPARE + start, "sh", str(own or ""), stores, str(int(seconds))]
    return ["unshare", *as_root, "--mount", *shell, *map(str, command)]


def end(process):
    """With its children."""
    os.killpg(process.pid, signal.SIGKILL)
    return process.communicate()[0]


def run(command, limit, work, own=None):
    """Runs a command on what lies in `work`, at most `limit` seconds; it may write in `own`.

    One that sleeps, or shares its processor with others, may take three times as long by the clock.
    """
    began = time.monotonic()
    process = subprocess.Popen(shielded(command, limit, work, own), start_new_session=True,
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT)
    try:
        output = process.communicate(timeout=3 * limit)[0]
    except subprocess.TimeoutExpired:
        output = end(process)
    seconds, in_time = time.monotonic() - began, process.returncode not in TIME_IS_UP
    return Ran(process.returncode, output.decode("utf-8", "replace"), seconds, in_time)
