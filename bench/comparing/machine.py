"""On what machine, in which state, and beside which programs was measured."""

import os
import platform
import subprocess

from comparing.cleaning import file_system
from comparing.measuring import ALL_CORES

# Packages and the programs that are used of them.
PEERS = {"coreutils": "du", "findutils": "find", "fd-find": "fdfind", "gdu": "gdu", "ncdu": "ncdu",
         "rsync": "rsync", "baobab": "baobab", "filelight": "filelight", "qdirstat": "qdirstat",
         "bleachbit": "bleachbit", "time": "time"}


def version(package):
    asked = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], capture_output=True,
                           text=True, check=False)
    return asked.stdout.strip() or "of unknown version"


def processor():
    with open("/proc/cpuinfo", encoding="utf-8") as lines:
        names = {line.split(":", 1)[1].strip() for line in lines if line.startswith("model name")}
    return ", ".join(sorted(names)) or platform.machine()


def description(options):
    peers = ", ".join(f"{package} {version(package)}" for package in PEERS)
    before = " ".join(options.priority)
    used = f" ({len(ALL_CORES)} of them used)" if len(ALL_CORES) < os.cpu_count() else ""
    order = f"each program under `{before}`" if before else "no priority"
    return (f"{processor()}, {os.cpu_count()} processors{used}, Linux {platform.release()}, "
            f"{file_system(options.folder)} and {file_system(options.ram)}; medians of "
            f"{options.rounds} rounds; {order}; load of the machine at the start {load()}. "
            f"Beside: {peers}.")


def load():
    return " ".join(f"{each:.1f}" for each in os.getloadavg())


def load_at_the_end():
    return f"Load of the machine at the end: {load()}."
