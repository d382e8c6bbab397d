"""Cleaning beside the programs that delete, on a disk and in memory."""

import io
import os
import random
import shutil
import subprocess
import tarfile

from comparing.measuring import Program, take_turns, use_cores
from comparing.table import Section, nanoseconds, ratio

# Programs, folders of each, files in each of these; or files in one folder.
SHAPES = {"cache": (16, 64, 100), "flat": (0, 0, 100_000), "wide": (0, 0, 400_000)}
QUICK_SHAPES = {"cache": (4, 4, 100), "flat": (0, 0, 2000), "wide": (0, 0, 20_000)}
TIMED_SHAPES = ("cache", "flat")
FILE_BYTES = 3000  # of every fourth file; the others are empty
EXCLUSIONS = 1000
SEED = 7


def folders_of(shape, quick):
    """The names of the tree's folders and how many files each of them holds."""
    programs, parts, files = (QUICK_SHAPES if quick else SHAPES)[shape]
    yield "tree", 0 if programs else files
    for program in range(programs):
        yield f"tree/program-{program}", 0
        for part in range(parts):
            yield f"tree/program-{program}/part-{part}", files


class Site:
    """A folder in which a tree stands that is removed again and again, with files beside it that
    have to stay. The tree is unpacked from an archive each time, which makes its files in the order
    of their names; a copy would make them in the order in which a folder lists them."""

    def __init__(self, shape, folder, options):
        self.folder = folder
        self.tree = os.path.join(folder, "tree")
        self.decoys = os.path.join(folder, "decoys")
        self.empty = os.path.join(folder, "empty")
        self.archive = os.path.join(folder, "archive.tar")
        os.makedirs(self.empty)
        os.mkdir(self.decoys)
        for number in range(EXCLUSIONS):
            with open(os.path.join(self.decoys, f"decoy-{number}"), "w", encoding="ascii") as decoy:
                decoy.write(f"{number}\n")
        self.files = []
        self.entries = 0
        self.pack(folders_of(shape, options.quick))
        self.excluded = set(random.Random(SEED).sample(self.files, EXCLUSIONS))
        self.expected_decoys = self.seen_decoys()

    def pack(self, folders):
        with tarfile.open(self.archive, "w") as archive:
            for name, count in folders:
                self.add(archive, name, tarfile.DIRTYPE)
                names = [f"{name}/file-{number:06}" for number in range(count)]
                for number, file in enumerate(names):
                    self.add(archive, file, tarfile.REGTYPE, 0 if number % 4 else FILE_BYTES)
                self.files += [os.path.join(self.folder, file) for file in names]
            self.add(archive, "tree/link", tarfile.SYMTYPE, target="../decoys")
        self.entries -= 1  # the tree itself

    def add(self, archive, name, kind, size=0, target=""):
        member = tarfile.TarInfo(name)
        member.type, member.size, member.linkname = kind, size, target
        member.mode = 0o755 if kind == tarfile.DIRTYPE else 0o644
        archive.addfile(member, io.BytesIO(bytes(size)))
        self.entries += 1

    def unpack(self):
        shutil.rmtree(self.tree, ignore_errors=True)
        subprocess.run(["tar", "-C", self.folder, "-xf", self.archive], check=True)
        subprocess.run(["sync", "-f", self.tree], check=True)

    def seen_decoys(self):
        seen = {}
        for entry in os.scandir(self.decoys):
            status = entry.stat(follow_symlinks=False)
            with open(entry.path, "rb") as decoy:
                seen[entry.name] = decoy.read(), status.st_mode, status.st_mtime_ns, status.st_ino
        return seen

    def check(self, kept=frozenset()):
        """Nothing of the tree is left but the kept files with their folders, and all beside it."""
        def check(outcome):
            if outcome.code != 0:
                return f"ended with {outcome.code}"
            left = {os.path.join(place, name)
                    for place, folders, names in os.walk(self.tree) for name in folders + names}
            ways = {way for path in kept for way in self.way_to(path)}
            if left != kept | ways:
                return (f"{len(left - kept - ways)} entries left, "
                        f"{len((kept | ways) - left)} lost that were excluded")
            is_whole = self.seen_decoys() == self.expected_decoys
            return "" if is_whole else "what lay beside is not whole"
        return check

    def way_to(self, path):
        while (path := os.path.dirname(path)) != self.tree:
            yield path

    def cleaning(self, options, name="Vantor", excluded=(), kept=frozenset()):
        words = [word for path in sorted(excluded) for word in ("--exclude", f"file://{path}")]
        command = [options.bench, "clean", self.tree, *words, "--yes"]
        return Program(name, command, self.check(kept), self.unpack)

    def cleanings(self, options):
        beside = {os.path.join(self.decoys, name) for name in self.expected_decoys}
        return [self.cleaning(options),
                self.cleaning(options, "Vantor, excluded beside", beside),
                self.cleaning(options, "Vantor, excluded inside", self.excluded, self.excluded)]

    def peers(self):
        commands = {
            "rm": ["rm", "-rf", self.tree],
            "rsync": ["rsync", "-a", "--delete", f"{self.empty}/", f"{self.tree}/"],
            "find": ["find", self.tree, "-delete"],
        }
        return [Program(name, command, self.check(), self.unpack)
                for name, command in commands.items()]


def clean(options, scratch, ram_scratch):
    section = Section(
        "Cleaning",
        "`vantor-bench clean` beside the programs that delete, on trees made anew for each run. "
        "The first figure is the removal alone, with its plan, in nanoseconds an entry; the "
        "second the whole process with its start and its measure. Then the peers' whole processes "
        f"over the removal, and `rm` over the whole process as well. The last two: {EXCLUSIONS:,} "
        "files excluded beside the tree and inside it, Vantor's own time over that without.",
        ["removal, ns", "whole, ns", "rm -rf", "rm -rf, whole", "rsync --delete", "find -delete",
         "excluded beside", "excluded inside"])
    for cores in options.cores:
        use_cores(cores)
        for folder in (scratch, ram_scratch):
            for shape in TIMED_SHAPES:
                add_row(section, shape, os.path.join(folder, f"clean-{shape}"), cores, options)
    return section


def add_row(section, shape, folder, cores, options):
    site = Site(shape, folder, options)
    try:
        ours, beside, inside = cleanings = site.cleanings(options)
        rm, rsync, find = peers = site.peers()
        take_turns([*cleanings, *peers], options)
    finally:
        shutil.rmtree(folder)
    alone, entries = ours.own_seconds(), site.entries
    label = f"{shape}, {entries:,} entries; {file_system(os.path.dirname(folder))}; {cores} cores"
    section.add(label, [nanoseconds(alone, entries), nanoseconds(ours.seconds(), entries),
                        ratio(rm, alone), ratio(rm, ours.seconds()), ratio(rsync, alone),
                        ratio(find, alone), f"{beside.own_seconds() / alone:.2f}",
                        f"{inside.own_seconds() / alone:.2f}"])
    section.judge(label, [*cleanings, *peers])


def file_system(folder):
    seen = subprocess.run(["findmnt", "-n", "-f", "-o", "FSTYPE", "-T", folder], check=True,
                          capture_output=True, text=True)
    return seen.stdout.strip()
