#!/usr/bin/python3
"""Times whole runs of quillet against the floor programs, in pairs, run by run.

Makes the inputs with quillet_example_model (about 1 million nodes, 60 output times) in a work folder
and uses them again when they are there. Builds nothing. docs/benchmarks.md says what the columns mean.

Exit status 1 when something does not run or the two outputs differ; never because of slowness.
"""

import argparse
import dataclasses
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import time


@dataclasses.dataclass(frozen=True)
class Operation:
    name: str
    options: tuple  # of quillet; empty where only the floor runs
    inputs: tuple  # read by both
    floor_inputs: tuple = ()  # read by the floor besides; quillet finds them itself
    small: bool = False  # worth a line in the comparison with cat
    copies: bool = False  # the floor is cp of what quillet writes


D1, D2, V1, H1 = "run1_d.dat", "run2_d.dat", "run1_V.dat", "run1_h.dat"
CONVERTED = {"run1_d.xmdf": D1, "run1_V.xmdf": V1}
MESHES = ("run1.2dm", "run2.2dm")

OPERATIONS = (
    Operation("copy", (), (D1,)),
    Operation("max-scalar", ("-max", "-ignore_mm"), (D1,), small=True),
    Operation("max-vector", ("-max", "-ignore_mm"), (V1,), small=True),
    Operation("max-scalar-stored", ("-max",), (D1,), small=True),
    Operation("max-vector-stored", ("-max",), (V1,), small=True),
    Operation("max-water-level", ("-max", "-ignore_mm"), (H1,), MESHES[:1], small=True),
    Operation("trim-scalar", ("-trim2",), (D1,), ("2",), small=True),
    Operation("trim-vector", ("-trim2",), (V1,), ("2",), small=True),
    Operation("va", ("-va",), (V1,), small=True),
    Operation("dif", ("-dif", "-nowetdry"), (D1, D2), small=True),
    Operation("dif-wetdry", ("-dif",), (D1, D2), (H1, "run2_h.dat", *MESHES), small=True),
    Operation("keep-scalar", ("-k99999",), (D1,), copies=True),
    Operation("remove-scalar", ("-r99999",), (D1,), copies=True),
    Operation("remove-vector", ("-r99999",), (V1,), copies=True),
    Operation("con-scalar", ("-con",), (D1, D2), copies=True),
    Operation("con-vector", ("-con",), (V1, "run2_V.dat"), copies=True),
    Operation("conv-scalar", ("-conv",), (D1,), copies=True),
    Operation("conv-vector", ("-conv",), (V1,), copies=True),
    Operation("conv-scalar-back", ("-conv", "-typed"), ("run1_d.xmdf",), copies=True),
    Operation("conv-vector-back", ("-conv", "-typeV"), ("run1_V.xmdf",), copies=True),
)


class Failure(Exception):
    pass


@dataclasses.dataclass
class Measure:
    wall: float  # seconds
    cpu: float
    peak: int  # bytes


def run(command):
    """Runs a program without a console, and measures it."""
    devices = [(os.POSIX_SPAWN_OPEN, 0, os.devnull, os.O_RDONLY, 0),
               (os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]
    start = time.perf_counter()
    process = os.posix_spawnp(command[0], command, os.environ, file_actions=devices)
    _, status, usage = os.wait4(process, 0)
    wall = time.perf_counter() - start
    if status != 0:
        raise Failure(f"status {status} from {' '.join(command)}")
    return Measure(wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


def measured_write(command, output):
    """A run that writes a new file, whichever program it is of."""
    output.unlink(missing_ok=True)
    measure = run(command)
    if not output.exists():
        raise Failure(f"no output from {' '.join(command)}")
    return measure


def paired_runs(commands, pairs):
    """Each of the commands (with its output, or None) in turn, after one round to warm up."""
    rounds = []
    for _ in range(pairs + 1):
        rounds.append([measured_write(command, output) if output else run(command)
                       for command, output in commands])
    return list(zip(*rounds[1:]))


def write_anew(folder):
    """Where a file lies in memory makes up to a third of reading it: all of them are of today."""
    for name in folder.iterdir():
        copy = folder / "copy"
        shutil.copyfile(name, copy)
        copy.rename(name)


class Bench:
    def __init__(self, options):
        self.programs = options.build / "bin"
        self.work = options.work
        self.pairs = options.pairs
        self.with_pieces = options.pieces
        nodes, times = (20_000, 60) if options.small else (options.nodes, options.times)
        self.model = self.make_model(nodes, times)
        write_anew(self.model)
        with open(self.model / D1, "rb") as file:
            header = file.read(92)
        self.nodes = int.from_bytes(header[36:40], "little")
        self.cells = int.from_bytes(header[44:48], "little")
        self.outputs = {who: self.work / who / "out.dat" for who in ("floor", "quillet")}
        for output in self.outputs.values():
            output.parent.mkdir(exist_ok=True)
        self.made = set(self.outputs.values())

    def make_model(self, nodes, times):
        folder = self.work / f"model_{nodes}_{times}"
        complete = folder / "complete"
        if not complete.exists():
            folder.mkdir(parents=True, exist_ok=True)
            print(f"Making the model in {folder} ...", flush=True)
            subprocess.run([self.programs / "quillet_example_model", "--no-xmdf", "--nodes", str(nodes),
                            "--times", str(times), folder], check=True, stdout=subprocess.DEVNULL)
            complete.touch()
        return folder

    def input_files(self, operation):
        return [str(self.model / name) for name in operation.inputs]

    def quillet_command(self, operation, output):
        return [str(self.programs / "quillet"), "-b", *operation.options,
                *self.input_files(operation), "-out", str(output)]

    def convert_input(self, name):
        if name in CONVERTED and not (self.model / name).exists():
            run([str(self.programs / "quillet"), "-b", "-conv", str(self.model / CONVERTED[name]),
                 "-out", str(self.model / name)])

    def commands_of_copy(self, operation):
        """cp of what quillet writes, and quillet."""
        for name in operation.inputs:
            self.convert_input(name)
        to_xmdf = operation.options == ("-conv",)
        names = [self.work / f"{what}.{'xmdf' if to_xmdf else 'dat'}"
                 for what in ("kept", "copied", "written")]
        self.made.update(names)
        kept, copied, written = names
        measured_write(self.quillet_command(operation, kept), kept)
        return [(["cp", str(kept), str(copied)], copied),
                (self.quillet_command(operation, written), written)]

    def floor_command(self, operation, dataset, scheme=()):
        more = [str(self.model / name) if "." in name else name for name in operation.floor_inputs]
        names = [dataset] if operation.options else []
        return [str(self.programs / "floor_dat"), *scheme, operation.name,
                str(self.outputs["floor"]), *names, *self.input_files(operation), *more]

    def commands(self, operation):
        """The floor, the floor in pieces where that is asked for, and, where there is one, quillet.

        They have been seen to write the same.
        """
        if operation.copies:
            return self.commands_of_copy(operation)
        floor_output, quillet_output = self.outputs["floor"], self.outputs["quillet"]
        dataset, programs = "", []
        if operation.options:
            programs = [(self.quillet_command(operation, quillet_output), quillet_output)]
            measured_write(*programs[0])
            dataset = dataset_name(quillet_output)
        schemes = [(), ("--pieces",)] if self.with_pieces else [()]
        floors = [(self.floor_command(operation, dataset, scheme), floor_output)
                  for scheme in schemes]
        for floor in floors:
            measured_write(*floor)
            if programs and not same_bytes(floor_output, quillet_output):
                raise Failure("the outputs of quillet and its floor differ")
        return floors + programs

    def compare(self, operation):
        runs = paired_runs(self.commands(operation), self.pairs)
        floor, quillet = runs[0], runs[-1] if operation.options else None
        pieces = runs[1] if len(runs) > 2 else None
        line = f"{operation.name:<18}{median(floor, 'wall'):>9.4f}"
        if quillet is None:
            return line + (f"{median(pieces, 'wall'):>73.4f}" if pieces else "")
        peak = max(measure.peak for measure in quillet)
        beyond = (peak - 20e6 - 4 * self.cells) / self.nodes
        line += (f"{median(quillet, 'wall'):>10.4f}{ratio_of(quillet, floor):>8.2f}"
                 f"{least(quillet) / least(floor):>8.2f}"
                 f"{median(quillet, 'cpu') / median(floor, 'cpu'):>8.2f}"
                 f"{max(m.peak for m in floor) / 2**20:>11.1f}{peak / 2**20:>9.1f}{beyond:>9.1f}")
        if pieces:
            line += f"{median(pieces, 'wall'):>10.4f}{ratio_of(quillet, pieces):>8.2f}"
        return line

    def compare_with_cat(self, operation):
        cat = (["cat", *self.input_files(operation)], None)
        cat, floor, quillet = paired_runs([cat, *self.commands(operation)], self.pairs)
        beyond = statistics.median(q.wall - c.wall for c, q in zip(cat, quillet))
        return (f"{operation.name:<18}" +
                "".join(f"{1000 * median(runs, 'wall'):>10.1f}" for runs in (cat, floor, quillet)) +
                f"{1000 * beyond:>14.1f}")


HEADING = (f"{'operation':<18}{'floor s':>9}{'quillet s':>10}{'ratio':>8}{'minima':>8}{'cpu':>8}"
           f"{'floor MiB':>11}{'MiB':>9}{'B/node':>9}")
PIECES_HEADING = f"{'pieces s':>10}{'ratio':>8}"
SMALL_HEADING = f"{'operation':<18}{'cat ms':>10}{'floor ms':>10}{'quillet ms':>10}{'beyond cat ms':>14}"


def median(runs, quantity):
    return statistics.median(getattr(measure, quantity) for measure in runs)


def ratio_of(runs, floor_runs):
    return statistics.median(run.wall / floor.wall for run, floor in zip(runs, floor_runs))


def least(runs):
    return min(measure.wall for measure in runs)


def dataset_name(dat_file):
    with open(dat_file, "rb") as file:
        return file.read(92)[52:].decode().rstrip()


def same_bytes(first, second):
    if first.stat().st_size != second.stat().st_size:
        return False
    with open(first, "rb") as a, open(second, "rb") as b:
        while block := a.read(1 << 20):
            if block != b.read(1 << 20):
                return False
    return True


def read_options():
    names = [operation.name for operation in OPERATIONS]
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0],
                                     epilog="operations: " + ", ".join(names))
    parser.add_argument("operations", nargs="*", metavar="OPERATION", help="all unless given")
    parser.add_argument("--build", type=pathlib.Path, default=root / "build" / "bench",
                        help="build folder with the programs in bin (default build/bench)")
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path("/tmp/quillet-bench"),
                        help="folder for inputs and outputs (default %(default)s)")
    parser.add_argument("--pairs", type=int, default=9, help="pairs of runs (default %(default)s)")
    parser.add_argument("--nodes", type=int, default=1_000_000, help="default %(default)s")
    parser.add_argument("--times", type=int, default=60, help="output times, default %(default)s")
    parser.add_argument("--pieces", action="store_true",
                        help="also floors that work in pieces that stay in the cache")
    parser.add_argument("--small", action="store_true",
                        help="20,000 nodes, compared with cat of the inputs")
    options = parser.parse_args()
    if options.small and options.pieces:
        parser.error("--pieces does not go with --small")
    for name in options.operations:
        if name not in names:
            parser.error(f"no operation {name}; there are {', '.join(names)}")
    return options


def main():
    options = read_options()
    bench = Bench(options)
    print(f"{bench.nodes} nodes, {bench.cells} cells, {options.pairs} pairs of runs")
    print(SMALL_HEADING if options.small else HEADING + PIECES_HEADING * options.pieces)
    failed = False
    for operation in OPERATIONS:
        chosen = operation.name in options.operations if options.operations else True
        if not chosen or (options.small and not operation.small):
            continue
        try:
            compare = bench.compare_with_cat if options.small else bench.compare
            print(compare(operation), flush=True)
        except (Failure, OSError) as failure:
            failed = True
            print(f"{operation.name:<18} {failure}", flush=True)
    for output in bench.made:
        output.unlink(missing_ok=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
