"""The trees that are measured and searched, and what is in them."""

import collections
import os
import subprocess

SMALLEST_LISTED = 49_000  # bytes: few files of the trees are that large
SMALLEST_LARGE = 100_000_001  # what the search looks for
NAMES = ("cache", "flat", "deep", "home")


class Tree:
    """A tree and what find sees in it, line by line. Paths alone would not do: those in the deep
    tree are longer than the system takes, which some programs trip over."""

    def __init__(self, path):
        self.path = path
        self.name = os.path.basename(path)
        self.entries = self.folders = self.bytes = self.folder_bytes = 0
        self.listed = []
        command = ["find", path, "-printf", "%y %s %f\\n"]
        seen = subprocess.run(command, check=True, capture_output=True).stdout
        for line in seen.splitlines():
            kind, size, name = line.split(b" ", 2)
            self.entries += 1
            if kind == b"d":
                self.folders += 1
                self.folder_bytes += int(size)
                continue
            self.bytes += int(size)
            if kind == b"f" and int(size) >= SMALLEST_LISTED:
                self.listed.append(name)
        self.entries -= 1  # the tree itself
        self.listed.sort()

    def label(self):
        return f"{self.name}, {self.entries:,} entries"


class Trees:
    """Makes all trees when the first of them is wanted."""

    def __init__(self, options, scratch):
        self.options = options
        self.folder = os.path.join(scratch, "trees")
        self.known = {}

    def get(self, name):
        if not os.path.isdir(self.folder):
            os.mkdir(self.folder)
            share = ["--share", "20"] if self.options.quick else []
            subprocess.run([self.options.bench, "trees", *share, self.folder], check=True)
        if name not in self.known:
            self.known[name] = Tree(os.path.join(self.folder, name))
        return self.known[name]


def difference(found, expected):
    """What two lists of byte strings differ in, in words; nothing when they are equal."""
    missing = collections.Counter(expected) - collections.Counter(found)
    surplus = collections.Counter(found) - collections.Counter(expected)
    if not missing and not surplus:
        return ""
    return f"{missing.total()} of {len(expected)} missing, {surplus.total()} too many"
