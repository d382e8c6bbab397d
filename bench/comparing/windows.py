"""Run by start.py on a display of its own: starts programs in turns and waits for their windows.

Takes a JSON object and prints another one: for each program the seconds from its start to its first
window and the most kilobytes that it has held until then, round by round.
"""

import json
import os
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PATIENCE = 30  # seconds for a window to come, and to go


class WindowList:
    """The windows that the window manager has taken in and shown. A window is in its list as soon
    as it is on the screen; xprop tells of each change."""

    def __init__(self):
        command = ["xprop", "-root", "-spy", "_NET_CLIENT_LIST"]
        self.spy = subprocess.Popen(command, stdout=subprocess.PIPE, text=False)
        self.await_windows(False)

    def await_windows(self, wanted):
        end = time.monotonic() + PATIENCE
        while (left := end - time.monotonic()) > 0:
            if not select.select([self.spy.stdout], [], [], left)[0]:
                break
            seen = os.read(self.spy.stdout.fileno(), 1 << 16).rstrip().rsplit(b"\n", 1)[-1]
            if (b"0x" in seen) == wanted:
                return
        raise TimeoutError("no window came" if wanted else "a window stays")


def peak_kilobytes(process):
    with open(f"/proc/{process}/status", encoding="utf-8") as lines:
        return next(int(line.split()[1]) for line in lines if line.startswith("VmHWM:"))


def start(program, windows):
    """The settings are a fresh copy each time, for a program may change them at its start."""
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(os.environ)
        for name, value in program["environment"].items():
            if value is None:
                environment.pop(name, None)
            else:
                environment[name] = value
        if program["settings"] is not None:
            environment["XDG_CONFIG_HOME"] = os.path.join(folder, "config")
            shutil.copytree(program["settings"], environment["XDG_CONFIG_HOME"])
        before = time.perf_counter()
        process = subprocess.Popen(program["command"], stdin=subprocess.DEVNULL, env=environment,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   start_new_session=True)
        try:
            windows.await_windows(True)
            return time.perf_counter() - before, peak_kilobytes(process.pid)
        finally:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            windows.await_windows(False)


def main():
    order = json.loads(sys.argv[1])
    programs = order["programs"]
    found = {program["name"]: [] for program in programs}
    windows = WindowList()
    try:
        # The first round is not counted: it brings the programs' files into memory.
        for number in range(order["rounds"] + 1):
            first = number % len(programs)
            for program in programs[first:] + programs[:first]:
                seen = start(program, windows)
                if number > 0:
                    found[program["name"]].append(seen)
    finally:
        windows.spy.kill()
    print(json.dumps(found))


if __name__ == "__main__":
    main()
