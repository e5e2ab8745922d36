"""Processes as the optimizer holds them: which belong to a program, which are stopped, how their threads stand."""

import ctypes
import os
import pathlib
import platform

IOPRIO_GET = {"x86_64": 252, "aarch64": 31}.get(platform.machine())
OF_PROCESS = 1
libc = ctypes.CDLL(None, use_errno=True)


def fields(process):
    """The fields of the kernel's line about a process, from the state on; None when it is gone."""
    try:
        text = pathlib.Path(f"/proc/{process}/stat").read_text()
    except OSError:
        return None
    return text.rpartition(")")[2].split()


def family(main):
    """The process and its descendants that run the same program."""
    try:
        program = os.readlink(f"/proc/{main}/exe")
    except OSError:
        return []
    parents = {}
    for entry in os.listdir("/proc"):
        stat = fields(entry) if entry.isdigit() else None
        if stat:
            parents[int(entry)] = int(stat[1])
    found, ahead = [], [main]
    while ahead:
        process = ahead.pop(0)
        found.append(process)
        ahead += [child for child, parent in parents.items() if parent == process]
    return [process for process in found if runs(process, program)]


def runs(process, program):
    try:
        return os.readlink(f"/proc/{process}/exe") == program
    except OSError:
        return False


def is_stopped(process):
    stat = fields(process)
    return stat is not None and stat[0] in "Tt"


def cpu_ticks(processes):
    return sum(int(stat[11]) + int(stat[12]) for stat in map(fields, processes) if stat)


def priorities(process):
    """Of each thread: its cores, its policy and its I/O priority."""
    standing = {}
    try:
        threads = [int(name) for name in os.listdir(f"/proc/{process}/task")]
    except OSError:
        return standing
    for thread in threads:
        try:
            cores, policy = frozenset(os.sched_getaffinity(thread)), os.sched_getscheduler(thread)
        except OSError:
            continue  # it has just ended
        standing[thread] = (cores, policy, libc.syscall(IOPRIO_GET, OF_PROCESS, thread) if IOPRIO_GET else 0)
    return standing


def is_slowed(process):
    """Whether its first thread waits behind others."""
    try:
        return os.sched_getscheduler(process) == os.SCHED_BATCH
    except OSError:
        return False


def is_as_before(before):
    """Whether nothing is stopped, and every thread that was there before and lives stands as it did then."""
    for process, threads in before.items():
        if is_stopped(process):
            return False
        now = priorities(process)
        if any(now[thread] != standing for thread, standing in threads.items() if thread in now):
            return False
    return True
