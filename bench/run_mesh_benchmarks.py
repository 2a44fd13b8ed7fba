#!/usr/bin/python3
"""Times the mesh readers on every form in which .2dm files are written, in pairs with the floor.

Makes the forms from a plain mesh in a work folder, and uses them again when they are there. Each reader
runs with one thread and with all cores. docs/benchmarks.md says what the columns mean.
"""

import argparse
import os
import pathlib
import statistics
import subprocess
import sys

from mesh_forms import FORMS, write_forms

READINGS = {"full": "full", "scanned": "full", "elevations": "elevations"}  # and their floors


def seconds(command):
    """What the program says that its reading took, in whichever of its outputs."""
    run = subprocess.run([str(part) for part in command], check=True, text=True, capture_output=True)
    return float((run.stderr or run.stdout).split()[0])


def compare(programs, reading, mesh, pairs):
    floor = [programs / "floor_mesh", READINGS[reading], mesh]
    quillet = [programs / "mesh_speed", reading, mesh]
    shared = [*quillet, min(os.cpu_count(), 8)]
    rounds = [(seconds(floor), seconds(quillet), seconds(shared)) for _ in range(pairs + 1)][1:]
    floors, quillets, all_cores = zip(*rounds)
    return (statistics.median(floors), statistics.median(quillets),
            statistics.median(own / least for least, own, _ in rounds),
            min(quillets) / min(floors), statistics.median(all_cores),
            statistics.median(own / together for _, own, together in rounds))


def make_mesh(programs, folder):
    """The mesh of the example model with about 1 million nodes."""
    mesh = folder / "model" / "run1.2dm"
    if not mesh.exists():
        subprocess.run([programs / "quillet_example_model", "--nodes", "1000000", "--times", "1",
                        "--scenarios", "1", "--no-xmdf", mesh.parent],
                       check=True, stdout=subprocess.DEVNULL)
    return mesh


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("forms", nargs="*", help="all unless given: " + ", ".join(FORMS))
    parser.add_argument("--mesh", type=pathlib.Path, help="a plain .2dm file in the full form; the "
                        "example model's unless given")
    parser.add_argument("--reading", choices=READINGS, help="all unless given")
    parser.add_argument("--build", type=pathlib.Path, default=root / "build" / "bench")
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path("/tmp/quillet-bench/forms"))
    parser.add_argument("--pairs", type=int, default=9)
    options = parser.parse_args()
    if unknown := set(options.forms) - set(FORMS):
        parser.error(f"no form {', '.join(unknown)}")
    options.work.mkdir(parents=True, exist_ok=True)
    programs = options.build / "bin"
    files = write_forms(options.mesh or make_mesh(programs, options.work), options.work)
    readings = [options.reading] if options.reading else READINGS
    print(f"{'reading':<12}{'form':<18}{'floor s':>9}{'quillet s':>11}{'ratio':>8}{'minima':>8}"
          f"{'all cores s':>13}{'faster':>8}")
    for reading in readings:
        for name in options.forms or FORMS:
            figures = compare(programs, reading, files[name], options.pairs)
            print(f"{reading:<12}{name:<18}"
                  + "{:>9.4f}{:>11.4f}{:>8.2f}{:>8.2f}{:>13.4f}{:>8.2f}".format(*figures), flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
