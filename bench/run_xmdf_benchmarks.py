#!/usr/bin/python3
"""Times runs of quillet on XMDF files, with one thread and with all cores, against the same run on a
.dat file, and against a good script (peer_xmdf.py) where HDF5 has to inflate.

Uses the model of run_benchmarks.py and makes from its depths and velocities one XMDF file for each
way of storing them; noisy ones shrink as little as results of rough terrain do. Exit status 1 when
something does not run or two outputs differ; never because of slowness.
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
    compression: int = 0  # deflate level; 0 is none
    times_per_chunk: int = 1
    nodes_per_chunk: int = 0  # 0: all
    filters: tuple = ()  # "shuffle", "fletcher32"
    noise: float = 0.0  # metres; the standard deviation of what is added to every wet depth
    vectors: bool = False


PLAIN = Storage("plain.xmdf")
PLAIN_VECTORS = Storage("plain_vectors.xmdf", vectors=True)
DEFLATED = Storage("deflated.xmdf", 1)
TOGETHER = Storage("together.xmdf", 1, 10)
NOISY = Storage("noisy.xmdf", 1, noise=0.02)
NOISY_TOGETHER = Storage("noisy_together.xmdf", 1, 10, noise=0.02)
NOISY_PIECES = Storage("noisy_pieces.xmdf", 1, 1, 100_000, noise=0.02)
NOISY_SHUFFLED = Storage("noisy_shuffled.xmdf", 1, 1, 0, ("shuffle",), 0.02)
NOISY_CHECKED = Storage("noisy_checked.xmdf", 1, 1, 0, ("fletcher32",), 0.02)
STORAGES = (PLAIN, PLAIN_VECTORS, DEFLATED, TOGETHER, NOISY, NOISY_TOGETHER, NOISY_PIECES,
            NOISY_SHUFFLED, NOISY_CHECKED)


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
    Comparison("max vectors, .dat / .xmdf", (*MAX, V1, "a.dat"),
               (*MAX, "-typeV", PLAIN_VECTORS.name, "b.xmdf")),
    Comparison("trim, to .dat / .xmdf", (*TRIM, D1, "a.dat"), (*TRIM, D1, "b.xmdf")),
    Comparison("trim vectors, to .dat / .xmdf", (*TRIM, V1, "a.dat"), (*TRIM, V1, "b.xmdf")),
    Comparison("trim, .dat / .xmdf", (*TRIM, D1, "a.dat"), (*TRIM, *TYPED, PLAIN.name, "b.xmdf")),
    *(Comparison(f"max, script / {what}", ("max", storage.name, "a.xmdf"),
                 (*MAX, *TYPED, storage.name, "b.xmdf"), MAPS)
      for what, storage in (("deflated", DEFLATED), ("10 together", TOGETHER), ("noisy", NOISY),
                            ("noisy, 10 together", NOISY_TOGETHER),
                            ("noisy, 10 chunks", NOISY_PIECES),
                            ("noisy, shuffled", NOISY_SHUFFLED),
                            ("noisy, checksums", NOISY_CHECKED))),
    *(Comparison(f"trim, script / {what}", ("trim", storage.name, "a.xmdf", "2"),
                 (*TRIM, *TYPED, storage.name, "b.xmdf"), TRIMMED)
      for what, storage in (("deflated", DEFLATED), ("10 together", TOGETHER), ("noisy", NOISY))),
)


def dat_times(name, components):
    """Time, statuses and values of every ordinary output time of a .dat file."""
    with open(name, "rb") as file:
        header = file.read(92)
        nodes, cells = (int.from_bytes(header[i:i + 4], "little") for i in (36, 44))
        block = np.dtype([("card", "<i4"), ("flag", "i1"), ("time", "<f4"), ("active", "u1", cells),
                          ("values", "<f4", (nodes, components)[:components])])
        while True:
            time = np.frombuffer(file.read(block.itemsize), block, 1)[0]
            if time["time"] > 99998:
                return
            yield time


def with_noise(values, noise, random):
    """A flood over three times the area, on rough ground."""
    third = len(values) // 3
    depths = np.maximum.reduce([values, np.roll(values, third), np.roll(values, 2 * third)])
    return np.where(depths > 0, depths + random.normal(0, noise, depths.shape), 0)


def write_member(group, name, rows, storage):
    """Rows as a member; how many of its bytes the file holds."""
    shape = (len(rows), *rows[0].shape)
    chunk = (storage.times_per_chunk, *rows[0].shape)
    if storage.nodes_per_chunk:
        chunk = (chunk[0], min(chunk[1], storage.nodes_per_chunk), *chunk[2:])
    data = group.create_dataset(name, shape, rows[0].dtype, maxshape=(None, *shape[1:]),
                                chunks=chunk, compression=storage.compression or None,
                                **{name: True for name in storage.filters})
    for first in range(0, len(rows), chunk[0]):
        data[first:first + chunk[0]] = rows[first:first + chunk[0]]
    return data.id.get_storage_size() / data.nbytes


def write_xmdf(name, dat_name, storage):
    random = np.random.default_rng(1)
    steps = list(dat_times(dat_name, 2 if storage.vectors else 1))
    values = [step["values"] for step in steps]
    if storage.noise:
        values = [with_noise(row, storage.noise, random).astype("f4") for row in values]
    with h5py.File(name, "w") as file:
        file["File Type"] = np.array(["Xmdf"], "S5")
        file["File Version"] = np.array([2.1], "f4")
        dataset, kind = (("Vector Velocity", "DATASET VECTOR") if storage.vectors else
                         ("Depth", "DATASET SCALAR"))
        group = file.create_group("run1/Temporal/" + dataset)
        group.attrs["Grouptype"] = np.array([kind], "S")
        group.attrs["TimeUnits"] = np.array(["Hours"], "S")
        group["Times"] = np.array([step["time"] for step in steps], "f8")
        share = write_member(group, "Values", values, storage)
        write_member(group, "Active", [step["active"] for step in steps], storage)
    print(f"{storage.name}: values take {share:.0%} of their bytes", flush=True)


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
        for storage in STORAGES:
            self.make_input(storage)
        write_anew(self.inputs)
        write_anew(self.model)

    def make_input(self, storage):
        name = self.inputs / storage.name
        if name.exists():
            return
        print(f"Making {name} ...", flush=True)
        part = name.with_suffix(".part")
        write_xmdf(part, self.model / (V1 if storage.vectors else D1), storage)
        part.rename(name)

    def command(self, words, *options):
        """The command and its output: the last name is the output's, a limit may follow it."""
        program, *arguments = words
        names = [str(self.model / word) if word in (D1, V1) else str(self.inputs / word)
                 if (self.inputs / word).exists() else word for word in arguments]
        place = next(i for i, word in enumerate(names) if word in ("a.dat", "a.xmdf", "b.xmdf"))
        output = self.outputs / names[place]
        if program == "quillet":
            return [self.quillet, "-b", *options, *names[:place], "-out", str(output)], output
        return [*PEER, program, *names[:place], str(output), *names[place + 1:]], output

    def compare(self, comparison):
        one = ("--threads=1",)
        commands = [self.command(comparison.first, *one), self.command(comparison.second, *one),
                    self.command(comparison.second)]
        for command, output in commands[:2]:
            measured_write(command, output)
        for path in comparison.compared:
            check_same(*(output for _, output in commands[:2]), path)
        first, second, crew = paired_runs(commands, self.pairs)
        ratio = statistics.median(b.wall / a.wall for a, b in zip(first, second))
        cpu = median(second, "cpu") / median(first, "cpu")
        gain = statistics.median(b.wall / c.wall for b, c in zip(second, crew))
        walls = [median(runs, "wall") for runs in (first, second, crew)]
        return (f"{comparison.name:<33}{walls[0]:>9.3f}{walls[1]:>10.3f}{ratio:>8.2f}"
                f"{1 / ratio:>8.2f}{cpu:>8.2f}{walls[2]:>13.3f}{gain:>8.2f}")


def check_same(first, second, path):
    with h5py.File(first) as a, h5py.File(second) as b:
        for member in ("Times", "Values", "Active", "Mins", "Maxs"):
            for row in range(a[path]["Times"].shape[0]):
                if not np.array_equal(a[path][member][row], b[path][member][row]):
                    raise Failure(f"{path}/{member} differs")


HEADING = (f"{'first / second':<33}{'first s':>9}{'second s':>10}{'ratio':>8}{'faster':>8}"
           f"{'cpu':>8}{'all cores s':>13}{'gain':>8}")


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
            print(f"{comparison.name:<33} {failure}", flush=True)
    for output in bench.outputs.iterdir():
        output.unlink()
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
