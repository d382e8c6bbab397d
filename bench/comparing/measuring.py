"""Runs programs, times them in turns, and holds what came of it."""

import dataclasses
import json
import os
import shutil
import statistics
import subprocess
import tempfile
import time
from collections.abc import Callable


@dataclasses.dataclass
class Options:
    """What the user asked for."""

    bench: str  # the program vantor-bench
    vantor: str  # the program itself
    folder: str  # on the disk to measure
    ram: str  # on a tmpfs
    cores: list[int]
    threads: list[int]  # empty: as many as there are cores
    rounds: int
    priority: list[str]  # words before each command
    quick: bool
    alone: bool  # without the other programs

    def settings(self):
        """Pairs of a number of cores and one of threads."""
        return [(cores, threads) for cores in self.cores for threads in self.threads or [cores]]


@dataclasses.dataclass
class Outcome:
    """What one run of a program did."""

    seconds: float  # from the start of the process until its end was awaited
    output: bytes
    code: int

    def own(self, key):
        """A figure that vantor-bench printed itself."""
        try:
            return json.loads(self.output.split(b"\n", 1)[0])[key]
        except ValueError as error:
            text = f"vantor-bench printed no figures, and ended with {self.code}"
            raise SystemExit(text) from error

    def lines(self):
        """What follows the figures of vantor-bench."""
        return self.output.split(b"\n", 1)[1].splitlines()


@dataclasses.dataclass
class Program:
    """A program to be measured. `check` says what is wrong with what it did, or nothing."""

    name: str
    command: list[str]
    check: Callable[[Outcome], str]
    prepare: Callable[[], None] = lambda: None
    outcomes: list[Outcome] = dataclasses.field(default_factory=list)
    complaints: list[str] = dataclasses.field(default_factory=list)

    def takes_part(self, options):
        is_ours = self.command[0] == options.bench
        return is_ours or not options.alone and shutil.which(self.command[0]) is not None

    def seconds(self):
        return statistics.median(outcome.seconds for outcome in self.outcomes)

    def own_seconds(self):
        return statistics.median(outcome.own("seconds") for outcome in self.outcomes)


def use_cores(count):
    """Keeps this process, and so all that it starts, on the first processors that it may use."""
    allowed = sorted(ALL_CORES)
    if count > len(allowed):
        raise SystemExit(f"there are only {len(allowed)} processors to be used")
    os.sched_setaffinity(0, allowed[:count])


ALL_CORES = os.sched_getaffinity(0)


def run(command, options, environment=None):
    """Runs one command. What it prints goes to a file in memory: a pipe would have to be read."""
    with tempfile.TemporaryFile(dir=options.ram) as output:
        before = time.perf_counter()
        code = subprocess.call(options.priority + command, stdin=subprocess.DEVNULL, stdout=output,
                               stderr=subprocess.DEVNULL, env=environment)
        seconds = time.perf_counter() - before
        output.seek(0)
        return Outcome(seconds, output.read(), code)


def take_turns(programs, options, rounds=None):
    """Runs all programs round by round, each round begun by the next one, so that what else the
    machine does meets all of them. Each single result is checked."""
    programs = [program for program in programs if program.takes_part(options)]
    for number in range(rounds or options.rounds):
        first = number % len(programs)
        for program in programs[first:] + programs[:first]:
            program.prepare()
            outcome = run(program.command, options)
            complaint = program.check(outcome)
            if complaint and complaint not in program.complaints:
                program.complaints.append(complaint)
            outcome.output = outcome.output[:4096]  # the figures are at the top
            program.outcomes.append(outcome)
