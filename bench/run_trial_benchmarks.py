#!/usr/bin/python3
"""Times the trial of XMDF files in child processes, on files of several forms.

Makes the files as engines write them, output time by output time.
"""

import argparse
import itertools
import pathlib
import subprocess

import h5py
import numpy as np

FORMS = ((20, 100), (5, 2000), (200, 5), (1, 24))  # datasets, output times
NODES, CELLS = 500, 400


def add_dataset(file, number, deflate):
    group = file.create_group(f"run1/Temporal/Data {number}")
    is_vector = number % 4 == 3
    group.attrs["Grouptype"] = np.array(["DATASET VECTOR" if is_vector else "DATASET SCALAR"], "S")
    group.attrs["TimeUnits"] = np.array(["Hours"], "S")
    row = (NODES, 2) if is_vector else (NODES,)
    for name, kind, shape, times in (("Times", "f8", (), 10), ("Values", "f4", row, 1),
                                     ("Active", "u1", (CELLS,), 1), ("Mins", "f4", (), 10),
                                     ("Maxs", "f4", (), 10)):
        group.create_dataset(name, (0, *shape), kind, maxshape=(None, *shape),
                             chunks=(times, *shape), compression=deflate if shape else None)
    return group


def make_file(name, datasets, times, deflate):
    with h5py.File(name, "w", libver="earliest") as file:
        file["File Type"] = np.array(["Xmdf"], "S5")
        file["File Version"] = np.array([2.1], "f4")
        groups = [add_dataset(file, number, deflate) for number in range(datasets)]
        for folder in ("run1", "run1/Temporal"):
            file[folder].attrs["Grouptype"] = np.array(["GENERIC"], "S")
        for time, group in itertools.product(range(times), groups):
            for member in group.values():
                member.resize(time + 1, axis=0)
                member[time] = time


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=pathlib.Path, default=root / "build" / "bench",
                        help="build folder with trial_speed in bin (default build/bench)")
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path("/tmp/quillet-bench"),
                        help="folder for inputs (default %(default)s)")
    options = parser.parse_args()
    folder = options.work / "trial"
    folder.mkdir(parents=True, exist_ok=True)
    print("| datasets | output times | stored | one type, ms | all, 1 thread, ms | 2 threads, ms |")
    print("|---|---|---|---|---|---|")
    for (datasets, times), deflate in itertools.product(FORMS, (None, 1)):
        name = folder / f"{datasets}_{times}_{deflate or 'plain'}.xmdf"
        if not name.exists():
            make_file(name.with_suffix(".part"), datasets, times, deflate)
            name.with_suffix(".part").rename(name)
        took = [subprocess.run([options.build / "bin" / "trial_speed", threads, word, name],
                               check=True, capture_output=True, text=True).stdout.strip()
                for threads, word in (("1", "Data 0"), ("1", "all"), ("2", "all"))]
        stored = "deflated" if deflate else "plain"
        print(f"| {datasets} | {times} | {stored} | {' | '.join(took)} |", flush=True)


if __name__ == "__main__":
    main()
