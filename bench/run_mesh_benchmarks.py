#!/usr/bin/python3
"""Times the mesh readers on every form in which .2dm files are written, in pairs with the floor.

Takes a plain mesh in the full form (quillet_example_model writes one), makes the other forms of it in a
work folder, and uses them again when they are there. docs/benchmarks.md says what the columns mean.
"""

import argparse
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
    rounds = [(seconds(floor), seconds(quillet)) for _ in range(pairs + 1)][1:]
    floors, quillets = zip(*rounds)
    ratio = statistics.median(second / first for first, second in rounds)
    return (statistics.median(floors), statistics.median(quillets), ratio,
            min(quillets) / min(floors))


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("mesh", type=pathlib.Path, help="a plain .2dm file in the full form")
    parser.add_argument("forms", nargs="*", help="all unless given: " + ", ".join(FORMS))
    parser.add_argument("--reading", choices=READINGS, default="full")
    parser.add_argument("--build", type=pathlib.Path, default=root / "build" / "bench")
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path("/tmp/quillet-bench/forms"))
    parser.add_argument("--pairs", type=int, default=9)
    options = parser.parse_args()
    if unknown := set(options.forms) - set(FORMS):
        parser.error(f"no form {', '.join(unknown)}")
    options.work.mkdir(parents=True, exist_ok=True)
    files = write_forms(options.mesh, options.work)
    print(f"{'form':<20}{'floor s':>9}{'quillet s':>11}{'ratio':>8}{'minima':>8}")
    for name in options.forms or FORMS:
        figures = compare(options.build / "bin", options.reading, files[name], options.pairs)
        print(f"{name:<20}" + "{:>9.4f}{:>11.4f}{:>8.2f}{:>8.2f}".format(*figures), flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
