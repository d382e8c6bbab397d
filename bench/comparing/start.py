"""The time from the start of a program to its first window."""

import json
import os
import pathlib
import pwd
import shutil
import statistics
import subprocess
import sys

from comparing.measuring import use_cores
from comparing.table import NOTHING, Section

TREE = pathlib.Path(__file__).resolve().parent.parent.parent
STATES = {"Vantor, never granted": None, "Vantor, granted": [],
          "Vantor, tutorial declined": ["--tutorial-declined"]}


def vantor_in(options, folder, state):
    """Vantor after an earlier run, or before any. It takes only a folder with the name of the
    user's own home."""
    home = folder / "homes" / os.path.basename(pwd.getpwuid(os.getuid()).pw_dir)
    settings = folder / str(len(list(folder.iterdir())))
    settings.mkdir()
    (home / "Downloads").mkdir(parents=True, exist_ok=True)
    if STATES[state] is not None:
        subprocess.run([options.bench, "settings", *STATES[state], home, settings / "vantor"],
                       check=True)
    elsewhere = {name: None for name in ("XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME")}
    return {"name": state, "command": [os.path.abspath(options.vantor)], "settings": str(settings),
            "environment": {"HOME": str(home), **elsewhere}}


def peers(folder, options):
    empty = folder / "empty"
    empty.mkdir()
    commands = (["baobab"], ["filelight"], ["qdirstat", str(empty)], ["bleachbit"])
    return [{"name": command[0], "command": command, "settings": None, "environment": {}}
            for command in commands if not options.alone and shutil.which(command[0])]


def measured(programs, options):
    order = json.dumps({"programs": programs, "rounds": options.rounds})
    command = [TREE / "scripts" / "on-virtual-display", sys.executable,
               TREE / "bench" / "comparing" / "windows.py", order]
    answer = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout
    return {name: [statistics.median(figures) for figures in zip(*rounds)]
            for name, rounds in json.loads(answer).items()}


def start(options, scratch):
    section = Section(
        "Start",
        "Milliseconds from the start of the process until the window manager of an empty virtual "
        "display has the first window on the screen, the most memory held until then, and the time "
        "of the fastest of the other programs over Vantor's. Without PRIORITY, which would keep "
        "the display from its work.",
        ["ms", "MB", "fastest other"])
    folder = pathlib.Path(scratch) / "start"
    folder.mkdir()
    others = peers(folder, options)
    programs = [vantor_in(options, folder, state) for state in STATES] + others
    for cores in options.cores:
        use_cores(cores)
        found = measured(programs, options)
        fastest = min((found[other["name"]][0] for other in others), default=None)
        for name, (seconds, kilobytes) in found.items():
            is_ours = name in STATES and fastest is not None
            section.add(f"{name}; {cores} cores",
                        [f"{seconds * 1000:.0f}", f"{kilobytes / 1000:.0f}",
                         f"{fastest / seconds:.2f}" if is_ours else NOTHING])
    shutil.rmtree(folder)
    return section
