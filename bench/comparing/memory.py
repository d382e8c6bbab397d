"""The most memory that each program holds at once."""

import os
import shutil

from comparing.cleaning import SHAPES, Site
from comparing.measuring import run, use_cores
from comparing.search import Home, peers_of, searching
from comparing.sizing import PEERS, peer, sizing
from comparing.table import NOTHING, WRONG, Section
from comparing.trees import NAMES

COLUMNS = ("Vantor", "du", "find", "fd", "gdu", "ncdu", "rm", "rsync")


class Peaks:
    """One row after the other. A program's peak is what the system says of a process that `time`
    has started: one that was started from here would begin with the memory of this interpreter."""

    def __init__(self, options, scratch):
        self.options = options
        self.note = os.path.join(scratch, "peak")
        self.section = Section(
            "Memory",
            "The most resident memory of a process, in MB, once for each program.", COLUMNS)

    def of(self, program):
        program.prepare()
        command = ["time", "-f", "%M", "-o", self.note, *program.command]
        complaint = program.check(run(command, self.options))
        if complaint:
            program.complaints.append(complaint)
        with open(self.note, encoding="ascii") as note:
            kilobytes = int(note.read().split()[-1])
        return f"{kilobytes / 1000:.1f}" + (f" {WRONG}" if complaint else "")

    def add(self, label, programs):
        found = {program.name: self.of(program) for program in programs
                 if program.takes_part(self.options)}
        self.section.add(label, [found.get(column, NOTHING) for column in COLUMNS])
        self.section.judge(label, programs)


def memory(options, trees, scratch):
    if not shutil.which("time"):
        raise SystemExit("the program time is not here, which tells how much memory another takes")
    cores, threads = options.settings()[-1]
    use_cores(cores)
    peaks = Peaks(options, scratch)
    for name in NAMES:
        tree = trees.get(name)
        programs = [sizing(tree, options, threads), *[peer(each, tree, threads) for each in PEERS]]
        peaks.add(f"sizing {tree.label()}", programs)
    home = Home(trees.get("home"))
    peaks.add("search in home", [searching(home, options, threads), *peers_of(home, threads)])
    for shape in SHAPES:
        folder = os.path.join(scratch, f"clean-{shape}")
        site = Site(shape, folder, options)
        try:
            peaks.add(f"cleaning {shape}, {site.entries:,} entries",
                      [site.cleaning(options), *site.peers()])
        finally:
            shutil.rmtree(folder)
    return peaks.section
