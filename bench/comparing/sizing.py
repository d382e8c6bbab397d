"""How much a tree holds: sizing with a warm and with a cold cache."""

import os
import re

from comparing.measuring import Program, take_turns, use_cores
from comparing.table import Section, nanoseconds, ratio
from comparing.trees import NAMES, SMALLEST_LISTED, difference

COLD_ROUNDS = 3
PEERS = ("du", "find", "fd", "gdu", "ncdu")


def check_ours(tree):
    def check(outcome):
        seen = outcome.own("bytes"), outcome.own("items"), outcome.own("complete")
        expected = tree.bytes, tree.entries, True
        return "" if seen == expected else f"{seen} instead of {expected}"
    return check


def check_total(tree, pattern):
    """All numbers of the pattern make up what the tree holds. What folders take themselves counts
    in some programs, in others not, and gdu gives each the same."""
    right = {tree.bytes + folders for folders in (0, tree.folder_bytes, tree.folders * 4096)}

    def check(outcome):
        total = sum(int(number) for number in re.findall(pattern, outcome.output))
        return "" if total in right else f"{total} bytes instead of {min(right)}"
    return check


def check_list(tree):
    def check(outcome):
        names = [os.path.basename(path) for path in outcome.output.splitlines()]
        return difference(names, tree.listed)
    return check


def walk(tree, options, threads):
    command = [options.bench, "walk", "--threads", str(threads), tree.path]
    return Program("bare walk", command, check_ours(tree))


def sizing(tree, options, threads):
    command = [options.bench, "size", "--threads", str(threads), tree.path]
    return Program("Vantor", command, check_ours(tree))


def peer(name, tree, threads):
    """find and fd know no total: they list what is large, which takes a look at each entry too."""
    path = tree.path
    return {
        "du": lambda: Program("du", ["du", "-s", "--apparent-size", "-B1", path],
                              check_total(tree, rb"^(\d+)\t")),
        "find": lambda: Program("find", ["find", path, "-type", "f", "-size",
                                         f"+{SMALLEST_LISTED - 1}c"], check_list(tree)),
        "fd": lambda: Program("fd", ["fdfind", "-u", "-j", str(threads), "--type", "f", "--size",
                                     f"+{SMALLEST_LISTED}b", ".", path], check_list(tree)),
        "gdu": lambda: Program("gdu", ["gdu", "-n", "-p", "-c", "-a", "-s", "--no-prefix", "-m",
                                       str(threads), path], check_total(tree, rb"(\d+) ")),
        "ncdu": lambda: Program("ncdu", ["ncdu", "-0", "-o", "-", path],
                                check_total(tree, rb'"asize":(\d+)')),
    }[name]()


def warm(options, trees):
    section = Section(
        "Sizing, warm cache",
        "`vantor-bench size` beside the bare walk and the peers. The first figure is its own time "
        "in nanoseconds an entry, without the start of the process. The others are ratios: the "
        "bare walk's own time over that, and the peers' whole processes over ours. Above 1 Vantor "
        "is faster.",
        ["Vantor, ns", "bare walk", *PEERS])
    for cores, threads in options.settings():
        use_cores(cores)
        for name in NAMES:
            tree = trees.get(name)
            ours, bare = sizing(tree, options, threads), walk(tree, options, threads)
            peers = [peer(each, tree, threads) for each in PEERS]
            take_turns([ours, bare, *peers], options)
            label = f"{tree.label()}; {cores} cores, {threads} threads"
            section.add(label, [nanoseconds(ours.own_seconds(), tree.entries),
                                f"{bare.own_seconds() / ours.own_seconds():.2f}",
                                *[ratio(each, ours.seconds()) for each in peers]])
            section.judge(label, [ours, bare, *peers])
    return section


def forget_files():
    """Has the kernel drop all that it keeps of the disk."""
    os.sync()
    with open("/proc/sys/vm/drop_caches", "w", encoding="ascii") as switch:
        switch.write("3")


def cold(options, trees):
    section = Section(
        "Sizing, cold cache",
        "The same after the kernel has dropped all that it kept of the disk; whole processes.",
        ["Vantor, ns", "du"])
    if os.geteuid() != 0:
        section.notes.append("not measured: only root can have the kernel drop its caches")
        return section
    for cores, threads in options.settings():
        use_cores(cores)
        for name in NAMES:
            tree = trees.get(name)
            programs = [sizing(tree, options, threads), peer("du", tree, threads)]
            for program in programs:
                program.prepare = forget_files
            take_turns(programs, options, min(options.rounds, COLD_ROUNDS))
            ours, du = programs
            label = f"{tree.label()}; {cores} cores, {threads} threads"
            section.add(label, [nanoseconds(ours.seconds(), tree.entries),
                                ratio(du, ours.seconds())])
            section.judge(label, programs)
    return section
