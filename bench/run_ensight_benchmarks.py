#!/usr/bin/python3
"""Times EnSight exports against their floor and a script, run by run.

Makes its inputs with quillet_example_model (about 1 million nodes, 6 output times) in a work folder and
uses them again when they are there. Builds nothing. docs/benchmarks.md says what the columns mean.
"""

import argparse
import pathlib
import statistics
import subprocess
import sys

from run_benchmarks import Failure, median, ratio_of, run, same_bytes, write_anew

INPUTS = {"scalar": ("run1_d.dat", "_Depth"), "vector": ("run1_V.dat", "_Velocity")}
MESH = "run1.2dm"
PEER = str(pathlib.Path(__file__).with_name("peer_ensight.py"))


def make_model(options):
    folder = options.work / f"ensight_{options.nodes}"
    if not (folder / "complete").exists():
        subprocess.run([options.build / "bin" / "quillet_example_model", "--no-xmdf", "--no-stored-maxima",
                        "--scenarios", "1", "--nodes", str(options.nodes), "--times", "6", folder],
                       check=True, stdout=subprocess.DEVNULL)
        (folder / "complete").touch()
    write_anew(folder)
    return folder


def empty(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name in folder.iterdir():
        name.unlink()


def measured(command, folder):
    empty(folder)
    return run(command)


def check_same(floor, quillet):
    names = [path.name for path in floor.iterdir()]
    if len(names) < 8:
        raise Failure("the floor wrote too few files")
    for name in names:
        if not same_bytes(floor / name, quillet / name):
            raise Failure(f"{name} differs")


def commands_of(options, model, kind):
    dat, variable = INPUTS[kind]
    programs = options.build / "bin"
    mesh, values = str(model / MESH), str(model / dat)
    outputs = {who: options.work / f"ensight_{who}" for who in ("peer", "floor", "one", "all")}
    base = {who: str(folder / "x") for who, folder in outputs.items()}
    quillet = [str(programs / "quillet"), "-b", "-ensight", values, "-2dm", mesh, "-out"]
    commands = {"peer": [sys.executable, PEER, base["peer"], mesh, values],
                "floor": [str(programs / "floor_ensight"), base["floor"], variable, mesh, values],
                "one": [*quillet, base["one"], "--threads=1"], "all": [*quillet, base["all"]]}
    return {who: (commands[who], outputs[who]) for who in outputs}


def compare(options, model, kind):
    commands = commands_of(options, model, kind)
    for command, folder in commands.values():
        measured(command, folder)
    for who in ("one", "all"):
        check_same(commands["floor"][1], commands[who][1])
    peer = [measured(*commands["peer"]) for _ in range(min(options.pairs, 3))]
    rounds = [[measured(*commands[who]) for who in ("floor", "one", "all")]
              for _ in range(options.pairs + 1)][1:]
    floor, one, all_cores = zip(*rounds)
    faster = statistics.median(a.wall / b.wall for a, b in zip(one, all_cores))
    peaks = [max(measure.peak for measure in runs) / 2**20 for runs in (one, all_cores)]
    for _, folder in commands.values():
        empty(folder)
    return (f"{kind:<10}{median(peer, 'wall'):>9.2f}{median(floor, 'wall'):>9.3f}"
            f"{median(one, 'wall'):>11.3f}{ratio_of(one, floor):>8.2f}"
            f"{median(one, 'cpu') / median(floor, 'cpu'):>8.2f}{median(all_cores, 'wall'):>12.3f}"
            f"{faster:>8.2f}{peaks[0]:>8.0f}{peaks[1]:>8.0f}")


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=pathlib.Path, default=root / "build" / "bench")
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path("/tmp/quillet-bench"))
    parser.add_argument("--pairs", type=int, default=9)
    parser.add_argument("--nodes", type=int, default=1_000_000)
    options = parser.parse_args()
    model = make_model(options)
    print(f"{'':<10}{'peer s':>9}{'floor s':>9}{'1 thread s':>11}{'ratio':>8}{'cpu':>8}{'all cores s':>12}"
          f"{'faster':>8}{'MiB':>8}{'MiB':>8}")
    failed = False
    for kind in INPUTS:
        try:
            print(compare(options, model, kind), flush=True)
        except (Failure, OSError) as failure:
            failed = True
            print(f"{kind:<10} {failure}", flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
