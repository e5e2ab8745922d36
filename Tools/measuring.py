"""What the tools that measure the agent share: a private desktop with somebody at work, and what the kernel counts."""

import os
import pathlib
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
SETTLE = 15  # seconds that a start may take


def in_private_desktop(script, arguments):
    """Begins anew inside one, unless this is one."""
    if not os.environ.get("KESTRIO_VIRTUAL_DESKTOP"):
        tool = ROOT / "Tools" / "virtual-desktop"
        os.execv(tool, [tool, "--", os.path.abspath(script), *arguments])


def programs():
    return pathlib.Path(os.environ.get("KESTRIO_BIN", ROOT / "build" / "release" / "bin"))


def start_agent(home, **more):
    environment = os.environ | {"KESTRIO_HOME": str(home)} | more
    # Or the first run would open the dashboard.
    subprocess.run([programs() / "kestrioctl", "settings", "set", "hasOnboarded", "true"], env=environment, check=True)
    return subprocess.Popen([programs() / "kestrio", "--login"], env=environment)


def fields(text):
    return {key: value.split()[0] for key, _, value in (line.partition(":") for line in text.splitlines()) if value.strip()}


def counters(pid):
    """CPU seconds, wake-ups of all threads, bytes written to disk."""
    tasks = pathlib.Path(f"/proc/{pid}/task")
    cpu = sum(int((task / "schedstat").read_text().split()[0]) for task in tasks.iterdir()) / 1e9
    wakes = sum(int(fields((task / "status").read_text())["voluntary_ctxt_switches"]) for task in tasks.iterdir())
    written = int(fields(pathlib.Path(f"/proc/{pid}/io").read_text())["write_bytes"])
    return cpu, wakes, written


def memory(pid):
    """RSS, PSS and private bytes in KB."""
    rollup = fields(pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text())
    return int(rollup["Rss"]), int(rollup["Pss"]), int(rollup["Private_Clean"]) + int(rollup["Private_Dirty"])


def windows():
    """Two terminals; one changes its title every five seconds."""
    busy = 'n=0; while :; do n=$((n+1)); printf "\\033]0;line %s of a long story\\007" $n; sleep 5; done'
    for title, script in (("quiet", "exec sleep 100000"), ("busy", busy)):
        yield subprocess.Popen(["xterm", "-T", title, "-e", "sh", "-c", script], stderr=subprocess.DEVNULL)
        time.sleep(1)


def work(seconds):
    """A switch between the two every twenty seconds."""
    names = ("quiet", "line")
    end, turn = time.monotonic() + seconds, 0
    while time.monotonic() < end:
        found = subprocess.run(["xdotool", "search", "--name", names[turn % 2]], capture_output=True, text=True,
                               check=False).stdout.split()
        if found:
            subprocess.run(["xdotool", "windowactivate", found[0]], check=False)
        subprocess.run(["xdotool", "mousemove", str(300 + turn % 50), "300"], check=False)
        turn += 1
        time.sleep(max(0, min(20, end - time.monotonic())))


def end_all(started):
    for process in started:
        process.terminate()
        process.wait()
