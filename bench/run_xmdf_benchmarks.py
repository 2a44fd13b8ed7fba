#!/usr/bin/python3
"""Times runs of quillet on XMDF files in pairs: against the same run on a .dat file, and against a
good script (peer_xmdf.py) where HDF5 has to inflate.

Uses the model of run_benchmarks.py and makes from its depths one XMDF file for each way of storing
them. Exit status 1 when something does not run or two outputs differ; never because of slowness.
"""

import argparse
import dataclasses
import pathlib
import statistics
import sys

import h5py
import numpy as np

from run_benchmarks import D1, V1, Failure, median, measured_write, paired_runs, write_anew

PEER = [sys.executable, str(pathlib.Path(__file__).with_name("peer_xmdf.py"))]
MAPS = tuple(f"MaxMax/Maximums/Max {name}" for name in ("Value", "Source", "Time"))
TRIMMED = ("Trim/Temporal/trim2",)


@dataclasses.dataclass(frozen=True)
class Storage:
    name: str
    compression: int  # deflate level; 0 is none
    times_per_chunk: int


PLAIN = Storage("plain.xmdf", 0, 1)
DEFLATED = Storage("deflated.xmdf", 1, 1)
TOGETHER = Storage("together.xmdf", 1, 10)


@dataclasses.dataclass(frozen=True)
class Comparison:
    """`first` is what quillet is compared with: itself on other files, or the script."""
    name: str
    first: tuple
    second: tuple
    compared: tuple = ()  # datasets that both outputs hold


MAX = ("quillet", "-max", "-ignore_mm")
TRIM = ("quillet", "-trim2")
TYPED = ("-typed",)
COMPARISONS = (
    Comparison("max, .dat / .xmdf", (*MAX, D1, "a.dat"), (*MAX, *TYPED, PLAIN.name, "b.xmdf")),
    Comparison("trim, to .dat / .xmdf", (*TRIM, D1, "a.dat"), (*TRIM, D1, "b.xmdf")),
    Comparison("trim vectors, to .dat / .xmdf", (*TRIM, V1, "a.dat"), (*TRIM, V1, "b.xmdf")),
    Comparison("trim, .dat / .xmdf", (*TRIM, D1, "a.dat"), (*TRIM, *TYPED, PLAIN.name, "b.xmdf")),
    Comparison("max, script / deflated", ("max", DEFLATED.name, "a.xmdf"),
               (*MAX, *TYPED, DEFLATED.name, "b.xmdf"), MAPS),
    Comparison("max, script / 10 together", ("max", TOGETHER.name, "a.xmdf"),
               (*MAX, *TYPED, TOGETHER.name, "b.xmdf"), MAPS),
    Comparison("trim, script / deflated", ("trim", DEFLATED.name, "a.xmdf", "2"),
               (*TRIM, *TYPED, DEFLATED.name, "b.xmdf"), TRIMMED),
    Comparison("trim, script / 10 together", ("trim", TOGETHER.name, "a.xmdf", "2"),
               (*TRIM, *TYPED, TOGETHER.name, "b.xmdf"), TRIMMED),
)


def dat_times(name):
    """Time, statuses and values of every ordinary output time of a scalar .dat file."""
    with open(name, "rb") as file:
        header = file.read(92)
        nodes, cells = (int.from_bytes(header[i:i + 4], "little") for i in (36, 44))
        block = np.dtype([("card", "<i4"), ("flag", "i1"), ("time", "<f4"), ("active", "u1", cells),
                          ("values", "<f4", nodes)])
        while True:
            time = np.frombuffer(file.read(block.itemsize), block, 1)[0]
            if time["time"] > 99998:
                return
            yield time


def write_xmdf(name, dat_name, storage):
    steps = list(dat_times(dat_name))
    rows = storage.times_per_chunk
    with h5py.File(name, "w") as file:
        file["File Type"] = np.array(["Xmdf"], "S5")
        file["File Version"] = np.array([2.1], "f4")
        group = file.create_group("run1/Temporal/Depth")
        group.attrs["Grouptype"] = np.array(["DATASET SCALAR"], "S")
        group.attrs["TimeUnits"] = np.array(["Hours"], "S")
        group["Times"] = np.array([step["time"] for step in steps], "f8")
        for member, field, kind in (("Values", "values", "f4"), ("Active", "active", "u1")):
            width = len(steps[0][field])
            data = group.create_dataset(member, (len(steps), width), kind, maxshape=(None, width),
                                        chunks=(rows, width), compression=storage.compression or None)
            for first in range(0, len(steps), rows):
                data[first:first + rows] = [step[field] for step in steps[first:first + rows]]


class Bench:
    def __init__(self, options):
        self.quillet = str(options.build / "bin" / "quillet")
        self.model = options.work / f"model_{options.nodes}_{options.times}"
        if not (self.model / "complete").exists():
            raise Failure(f"no model in {self.model}: run run_benchmarks.py first")
        self.inputs = options.work / f"xmdf_{options.nodes}_{options.times}"
        self.inputs.mkdir(exist_ok=True)
        self.outputs = options.work / "xmdf_outputs"
        self.outputs.mkdir(exist_ok=True)
        self.pairs = options.pairs
        for storage in (PLAIN, DEFLATED, TOGETHER):
            self.make_input(storage)
        write_anew(self.inputs)
        write_anew(self.model)

    def make_input(self, storage):
        name = self.inputs / storage.name
        if name.exists():
            return
        print(f"Making {name} ...", flush=True)
        part = name.with_suffix(".part")
        write_xmdf(part, self.model / D1, storage)
        part.rename(name)

    def command(self, words):
        """The command and its output: the last name is the output's, a limit may follow it."""
        program, *arguments = words
        names = [str(self.model / word) if word in (D1, V1) else str(self.inputs / word)
                 if (self.inputs / word).exists() else word for word in arguments]
        place = next(i for i, word in enumerate(names) if word in ("a.dat", "a.xmdf", "b.xmdf"))
        output = self.outputs / names[place]
        if program == "quillet":
            return [self.quillet, "-b", *names[:place], "-out", str(output)], output
        return [*PEER, program, *names[:place], str(output), *names[place + 1:]], output

    def compare(self, comparison):
        commands = [self.command(words) for words in (comparison.first, comparison.second)]
        for command, output in commands:
            measured_write(command, output)
        for path in comparison.compared:
            check_same(*(output for _, output in commands), path)
        first, second = paired_runs(commands, self.pairs)
        ratio = statistics.median(b.wall / a.wall for a, b in zip(first, second))
        cpu = median(second, "cpu") / median(first, "cpu")
        return (f"{comparison.name:<31}{median(first, 'wall'):>9.3f}{median(second, 'wall'):>10.3f}"
                f"{ratio:>8.2f}{1 / ratio:>8.2f}{cpu:>8.2f}")


def check_same(first, second, path):
    with h5py.File(first) as a, h5py.File(second) as b:
        for member in ("Times", "Values", "Active", "Mins", "Maxs"):
            for row in range(a[path]["Times"].shape[0]):
                if not np.array_equal(a[path][member][row], b[path][member][row]):
                    raise Failure(f"{path}/{member} differs")


HEADING = (f"{'first / second':<31}{'first s':>9}{'second s':>10}{'ratio':>8}{'faster':>8}"
           f"{'cpu':>8}")


def read_options():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("words", nargs="*", metavar="WORD", help="only comparisons with these words")
    parser.add_argument("--build", type=pathlib.Path, default=root / "build" / "bench",
                        help="build folder with quillet in bin (default build/bench)")
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path("/tmp/quillet-bench"),
                        help="folder for inputs and outputs (default %(default)s)")
    parser.add_argument("--pairs", type=int, default=7, help="pairs of runs (default %(default)s)")
    parser.add_argument("--nodes", type=int, default=1_000_000, help="default %(default)s")
    parser.add_argument("--times", type=int, default=60, help="output times, default %(default)s")
    return parser.parse_args()


def main():
    failed = False
    options = read_options()
    bench = Bench(options)
    print(HEADING)
    for comparison in COMPARISONS:
        if not all(word in comparison.name for word in options.words):
            continue
        try:
            print(bench.compare(comparison), flush=True)
        except (Failure, OSError) as failure:
            failed = True
            print(f"{comparison.name:<31} {failure}", flush=True)
    for output in bench.outputs.iterdir():
        output.unlink()
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
