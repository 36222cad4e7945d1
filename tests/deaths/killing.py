"""Runs a program under strace and kills it as it enters a chosen system call.

The death comes from outside, by ptrace, at a call of the kernel's and not of the program's: nothing in the
program knows of it. The calls that count are those that change a file system; `when` is the number
of the call among those of its name, counted as strace counts them.
"""
import collections
import os
import re
import shutil
import subprocess
import tempfile

# A name with `?` may be unknown where this runs: other widths of the processor have other names.
CHANGING = ("open openat creat mkdir mkdirat rmdir unlink unlinkat rename renameat renameat2 link linkat symlink "
            "symlinkat truncate truncate64 ftruncate ftruncate64 write writev pwrite64 pwritev pwritev2 fallocate "
            "copy_file_range sendfile sendfile64 chmod fchmod fchmodat chown fchown fchownat utime utimes "
            "utimensat setxattr lsetxattr fsetxattr removexattr lremovexattr fremovexattr")
CALL_LINE = re.compile(r"^(?:\d+ +)?(\w+)\((.*)\) += (-?\d+|\?)")
STDERR = "2"

Call = collections.namedtuple("Call", "name when text")


def strace_is_here():
    """Why no program can be traced here; empty if it can."""
    if shutil.which("strace") is None:
        return "strace is not installed"
    tried = run_traced(["-e", "trace=none"], ["true"])
    return "" if tried.returncode == 0 else "strace may not trace here: " + tried.stderr.strip()


def environment():
    # Under a tracer the leak checker of a sanitized program cannot work.
    return {**os.environ, "ASAN_OPTIONS": "detect_leaks=0", "USER": "hill", "LC_ALL": "C.UTF-8"}


def run_traced(options, command, where=None):
    return subprocess.run(["strace", "-f", "-qq", "-e", "signal=none", *options, "--", *command],
                          cwd=where, env=environment(), text=True, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)


def changes_something(name, arguments):
    if name in ("open", "openat"):
        return "O_CREAT" in arguments or "O_TRUNC" in arguments
    return not (name in ("write", "writev") and arguments.split(",")[0] == STDERR)


def changing_calls(command, where):
    """What the program answers undisturbed, and its changing calls in their order. The line that it prints at its
    end counts: who dies there has done all and told nobody."""
    with tempfile.NamedTemporaryFile("r", encoding="utf-8", errors="replace") as log:
        traced = ",".join("?" + name for name in CHANGING.split())
        done = run_traced(["--seccomp-bpf", "-o", log.name, "-s", "48", "-e", "trace=" + traced], command, where)
        counts = collections.Counter()
        calls = []
        for line in log:
            found = CALL_LINE.match(line)
            if not found:
                continue
            name, arguments, result = found.groups()
            counts[name] += 1
            if changes_something(name, arguments) and not result.startswith("-"):
                calls.append(Call(name, counts[name], f"{name}({arguments})"))
    return done, calls


def kill_at(call, command, where):
    """Whether it died there. Stopped by a filter of the kernel's, as in changing_calls, it would outlive it."""
    done = run_traced(["-o", os.devnull, "-e", f"trace={call.name}",
                       "-e", f"inject={call.name}:signal=KILL:when={call.when}"], command, where)
    return done.returncode in (-9, 137)
