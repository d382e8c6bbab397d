"""Where the trees lie that are measured."""

import contextlib
import os
import subprocess
import tempfile

DISK_BYTES = 5_000_000_000  # of an image that has holes where nothing was written
DISK_FILES = 1_600_000


@contextlib.contextmanager
def scratch_folder(place):
    """A folder that is gone at the end. It is removed by rm, for some trees in it are so deep that
    Python's own removal fails."""
    path = tempfile.mkdtemp(prefix="vantor-compare-", dir=place)
    try:
        yield path
    finally:
        subprocess.run(["rm", "-rf", path], check=True)


@contextlib.contextmanager
def fresh_disk(place):
    """An ext4 of its own, made anew in a file: a file system in use has its past, which meets each
    program in another way. One without a journal, above all, makes files slower and slower while
    many are removed."""
    with scratch_folder(place) as folder:
        image, point = os.path.join(folder, "image"), os.path.join(folder, "mounted")
        os.mkdir(point)
        with open(image, "wb") as made:
            made.truncate(DISK_BYTES)
        subprocess.run(["mkfs.ext4", "-q", "-F", "-N", str(DISK_FILES), "-E",
                        "lazy_itable_init=0,lazy_journal_init=0", image], check=True)
        subprocess.run(["mount", "-o", "loop,discard", image, point], check=True)
        try:
            yield point
        finally:
            subprocess.run(["umount", point], check=True)
