#!/usr/bin/python3
"""Times whole runs of quillet against the floor programs and good scripts, run by run.

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
    small: bool = False  # worth a line in the comparison with cat of small files
    cold: bool = False  # and of files on the disk
    copies: bool = False  # the floor is cp of what quillet writes
    last_bits: int = 0  # by which values may differ from the floor's


D1, D2, V1, H1 = "run1_d.dat", "run2_d.dat", "run1_V.dat", "run1_h.dat"
CONVERTED = {"run1_d.xmdf": D1, "run1_V.xmdf": V1}
MESHES = ("run1.2dm", "run2.2dm")

OPERATIONS = (
    Operation("copy", (), (D1,)),
    Operation("max-scalar", ("-max", "-ignore_mm"), (D1,), small=True, cold=True),
    Operation("max-vector", ("-max", "-ignore_mm"), (V1,), small=True, cold=True),
    Operation("max-scalar-stored", ("-max",), (D1,), small=True),
    Operation("max-vector-stored", ("-max",), (V1,), small=True),
    Operation("max-water-level", ("-max", "-ignore_mm"), (H1,), MESHES[:1], small=True, cold=True),
    Operation("trim-scalar", ("-trim2",), (D1,), ("2",), small=True),
    Operation("trim-vector", ("-trim2",), (V1,), ("2",), small=True),
    Operation("va", ("-va",), (V1,), small=True, last_bits=1),
    Operation("dif", ("-dif", "-nowetdry"), (D1, D2), small=True, cold=True),
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


def paired_runs(commands, pairs, before=lambda: None):
    """Each of the commands (with its output, or None) in turn, after one round to warm up."""
    def measured(command, output):
        before()
        return measured_write(command, output) if output else run(command)

    rounds = [[measured(*command) for command in commands] for _ in range(pairs + 1)]
    return list(zip(*rounds[1:]))


def drop_caches():
    """Only root may; os.sync first, since pages that wait for the disk stay."""
    os.sync()
    with open("/proc/sys/vm/drop_caches", "w", encoding="ascii") as file:
        file.write("3\n")


def write_anew(folder):
    """Where a file lies in memory makes up to a third of reading it: all of them are of today.

    They are on the disk when this returns, so that nothing is measured while they are on their way.
    """
    for name in folder.iterdir():
        copy = folder / "copy"
        shutil.copyfile(name, copy)
        copy.rename(name)
    os.sync()


class Bench:
    def __init__(self, options):
        self.programs = options.build / "bin"
        self.work = options.work
        self.pairs = options.pairs
        nodes, times = (20_000, 60) if options.small else (options.nodes, options.times)
        self.model = self.make_model(nodes, times)
        write_anew(self.model)
        with open(self.model / D1, "rb") as file:
            header = file.read(92)
        self.nodes = int.from_bytes(header[36:40], "little")
        self.cells = int.from_bytes(header[44:48], "little")
        self.outputs = {who: self.work / who / "out.dat" for who in ("peer", "floor", "quillet")}
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

    def quillet_command(self, operation, output, threads=1):
        share = [f"--threads={threads}"] if threads else []
        return [str(self.programs / "quillet"), "-b", *share, *operation.options,
                *self.input_files(operation), "-out", str(output)]

    def convert_input(self, name):
        if name in CONVERTED and not (self.model / name).exists():
            run([str(self.programs / "quillet"), "-b", "-conv", str(self.model / CONVERTED[name]),
                 "-out", str(self.model / name)])

    def quillet_commands(self, operation, output):
        """With one thread, and with as many as it takes by itself."""
        return [(self.quillet_command(operation, output, threads), output) for threads in (1, None)]

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
        return [(["cp", str(kept), str(copied)], copied), *self.quillet_commands(operation, written)]

    def command_of(self, program, who, operation, dataset):
        """Floor and peer take the same arguments."""
        more = [str(self.model / name) if "." in name else name for name in operation.floor_inputs]
        names = [dataset] if operation.options else []
        return ([*program, operation.name, str(self.outputs[who]), *names,
                 *self.input_files(operation), *more], self.outputs[who])

    def floor_command(self, operation, dataset):
        return self.command_of([str(self.programs / "floor_dat")], "floor", operation, dataset)

    def peer_command(self, operation, dataset):
        peer = pathlib.Path(__file__).with_name("peer_dat.py")
        return self.command_of([sys.executable, str(peer)], "peer", operation, dataset)

    def dataset_of(self, operation):
        """Runs quillet, whose output tells the name of the dataset."""
        if not operation.options:
            return ""
        output = self.outputs["quillet"]
        measured_write(self.quillet_command(operation, output), output)
        return dataset_name(output)

    def commands(self, operation):
        """The floor and, where there is one, quillet. They have been seen to write the same."""
        if operation.copies:
            return self.commands_of_copy(operation)
        quillet_output = self.outputs["quillet"]
        floor = self.floor_command(operation, self.dataset_of(operation))
        measured_write(*floor)
        if not operation.options:
            return [floor]
        if not same_results(floor[1], quillet_output, operation.last_bits):
            raise Failure("the outputs of quillet and its floor differ")
        return [floor, *self.quillet_commands(operation, quillet_output)]

    def peer_time(self, operation):
        if operation.copies or not operation.options:
            return f"{'':>9}"
        peer = self.peer_command(operation, self.dataset_of(operation))
        measured_write(*peer)
        if not same_values(peer[1], self.outputs["quillet"], "close"):
            raise Failure("the outputs of quillet and the script differ")
        return f"{median(paired_runs([peer], min(self.pairs, 3))[0], 'wall'):>9.3f}"

    def compare(self, operation):
        floor, *quillet = paired_runs(self.commands(operation), self.pairs)
        line = f"{operation.name:<18}{self.peer_time(operation)}{median(floor, 'wall'):>9.4f}"
        if not quillet:
            return line
        one, all_cores = quillet
        peak = max(measure.peak for measure in one)
        beyond = (peak - 20e6 - 4 * self.cells) / self.nodes
        return line + (f"{median(one, 'wall'):>10.4f}{ratio_of(one, floor):>8.2f}"
                       f"{least(one) / least(floor):>8.2f}"
                       f"{median(one, 'cpu') / median(floor, 'cpu'):>8.2f}"
                       f"{median(all_cores, 'wall'):>11.4f}"
                       f"{max(m.peak for m in floor) / 2**20:>11.1f}{peak / 2**20:>9.1f}"
                       f"{beyond:>9.1f}")

    def compare_with_cat(self, operation):
        cat = (["cat", *self.input_files(operation)], None)
        cat, floor, quillet, _ = paired_runs([cat, *self.commands(operation)], self.pairs)
        beyond = statistics.median(q.wall - c.wall for c, q in zip(cat, quillet))
        return (f"{operation.name:<18}" +
                "".join(f"{1000 * median(runs, 'wall'):>10.1f}" for runs in (cat, floor, quillet)) +
                f"{1000 * beyond:>14.1f}")

    def compare_cold(self, operation):
        """Against cat, each of them after the page cache was dropped."""
        output = self.outputs["quillet"]
        files = [str(self.model / name) for name in (*operation.inputs, *operation.floor_inputs)]
        commands = [(["cat", *files], None),
                    (self.quillet_command(operation, output, None), output)]
        cat, quillet = paired_runs(commands, self.pairs, before=drop_caches)
        return (f"{operation.name:<18}{median(cat, 'wall'):>9.3f}{median(quillet, 'wall'):>10.3f}"
                f"{ratio_of(quillet, cat):>8.2f}{least(quillet) / least(cat):>8.2f}")


HEADING = (f"{'operation':<18}{'peer s':>9}{'floor s':>9}{'1 thread s':>10}{'ratio':>8}{'minima':>8}"
           f"{'cpu':>8}{'all cores s':>11}{'floor MiB':>11}{'MiB':>9}{'B/node':>9}")
COLD_HEADING = f"{'operation':<18}{'cat s':>9}{'quillet s':>10}{'ratio':>8}{'minima':>8}"
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


def same_values(first, second, *how):
    """In a process of its own: what this one holds in memory counts for all that it starts."""
    compare = pathlib.Path(__file__).with_name("compare_dat.py")
    return subprocess.run([sys.executable, compare, *how, first, second]).returncode == 0


def same_results(first, second, last_bits):
    if last_bits == 0:
        return same_bytes(first, second)
    return same_values(first, second, "bits", str(last_bits))


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
    form = parser.add_mutually_exclusive_group()
    form.add_argument("--small", action="store_true",
                      help="20,000 nodes, compared with cat of the inputs")
    form.add_argument("--cold", action="store_true",
                      help="files from the disk, compared with cat of the inputs; root only")
    options = parser.parse_args()
    for name in options.operations:
        if name not in names:
            parser.error(f"no operation {name}; there are {', '.join(names)}")
    return options


def main():
    options = read_options()
    bench = Bench(options)
    print(f"{bench.nodes} nodes, {bench.cells} cells, {options.pairs} pairs of runs")
    if options.cold:
        heading, compare = COLD_HEADING, bench.compare_cold
    elif options.small:
        heading, compare = SMALL_HEADING, bench.compare_with_cat
    else:
        heading, compare = HEADING, bench.compare
    print(heading)
    failed = False
    for operation in OPERATIONS:
        chosen = operation.name in options.operations if options.operations else True
        wanted = operation.cold if options.cold else operation.small or not options.small
        if not chosen or not wanted:
            continue
        try:
            print(compare(operation), flush=True)
        except (Failure, OSError) as failure:
            failed = True
            print(f"{operation.name:<18} {failure}", flush=True)
    for output in bench.made:
        output.unlink(missing_ok=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
