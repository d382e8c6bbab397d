"""The search for large files in a home."""

import os

from comparing.measuring import Program, take_turns, use_cores
from comparing.table import Section, nanoseconds, ratio
from comparing.trees import SMALLEST_LARGE, difference

EXCLUSIONS = 1000
EXCLUDED_LARGE_FILES = 10


def files_below(folder):
    return sorted(os.path.join(place, name)
                  for place, _, names in os.walk(folder) for name in names)


class Home:
    """The home-like tree: its folders, its large files, and what is excluded from its search."""

    def __init__(self, tree):
        self.path = tree.path
        self.entries = tree.entries
        self.folders = sorted(entry.path for entry in os.scandir(tree.path))
        files = [path for path in files_below(tree.path) if not os.path.islink(path)]
        self.large = [path for path in files if os.lstat(path).st_size >= SMALLEST_LARGE]
        small = sorted(set(files) - set(self.large))
        others = EXCLUSIONS - EXCLUDED_LARGE_FILES
        self.excluded = self.large[:EXCLUDED_LARGE_FILES]
        self.excluded += small[:: max(1, len(small) // others)][:others]

    def check(self, excluded=()):
        expected = [os.fsencode(path) for path in self.large if path not in excluded]
        return lambda outcome: difference(outcome.output.splitlines(), expected)

    def check_ours(self, excluded=()):
        expected = [os.fsencode(path) for path in self.large if path not in excluded]

        def check(outcome):
            if not outcome.own("complete"):
                return "not complete"
            return difference(outcome.lines(), expected)
        return check


def searching(home, options, threads):
    command = [options.bench, "search", "--threads", str(threads), "--list", home.path]
    return Program("Vantor", command, home.check_ours())


def searching_with_exclusions(home, options, threads):
    command = [options.bench, "search", "--threads", str(threads), "--list"]
    for path in home.excluded:
        command += ["--exclude", f"file://{path}"]
    return Program("Vantor with exclusions", command + [home.path],
                   home.check_ours(set(home.excluded)))


def peers_of(home, threads):
    return [
        Program("find", ["find", *home.folders, "-type", "f", "-size", f"+{SMALLEST_LARGE - 1}c"],
                home.check()),
        Program("fd", ["fdfind", "-u", "-j", str(threads), "--type", "f", "--size",
                       f"+{SMALLEST_LARGE}b", ".", *home.folders], home.check())]


def search(options, trees):
    section = Section(
        "Search for large files, warm cache",
        f"Whole processes. The last figure is Vantor's own time with {EXCLUSIONS:,} excluded paths "
        f"over its own time without; {EXCLUDED_LARGE_FILES} of them are large files.",
        ["Vantor, ns", "find", "fd", "exclusions"])
    home = Home(trees.get("home"))
    for cores, threads in options.settings():
        use_cores(cores)
        ours = searching(home, options, threads)
        excluding = searching_with_exclusions(home, options, threads)
        peers = peers_of(home, threads)
        take_turns([ours, excluding, *peers], options)
        label = f"{trees.get('home').label()}; {cores} cores, {threads} threads"
        section.add(label, [nanoseconds(ours.own_seconds(), home.entries),
                            *[ratio(each, ours.seconds()) for each in peers],
                            f"{excluding.own_seconds() / ours.own_seconds():.2f}"])
        section.judge(label, [ours, excluding, *peers])
    return section
