#!/usr/bin/python3
"""What a good script does with an XMDF file: one pass, whole rows of chunks, h5py and numpy.

Usage: peer_xmdf.py max INPUT OUTPUT          running maximum, its time, cells that were ever active
       peer_xmdf.py trim INPUT OUTPUT LIMIT   values limited to LIMIT

The dataset is run1/Temporal/Depth; the output is an XMDF file as quillet writes it, for one input.
"""

import sys

import h5py
import numpy as np

PATH = "run1/Temporal/Depth"


def slabs(group):
    """Values and activity, as many output times at once as a chunk holds."""
    values, active = group["Values"], group["Active"]
    step = values.chunks[0] if values.chunks else 1
    for first in range(0, values.shape[0], step):
        yield first, values[first:first + step], active[first:first + step]


def add_dataset(file, path, times, shape, cells):
    group = file.create_group(path)
    for name, value in (("Grouptype", "DATASET SCALAR"), ("DatasetUnits", "m"), ("TimeUnits", "Hours")):
        group.attrs[name] = np.array([value], "S")
    group["Times"] = np.asarray(times, "f8")
    for name in ("Mins", "Maxs"):
        group.create_dataset(name, (shape[0],), "f4")
    group.create_dataset("Values", shape, "f4", chunks=(1, shape[1]))
    group.create_dataset("Active", (shape[0], cells), "u1", chunks=(1, cells))
    return group


def put(group, row, values, active):
    group["Values"][row], group["Active"][row] = values, active
    group["Mins"][row], group["Maxs"][row] = values.min(), values.max()


def take_maximum(source, output):
    nodes, cells = source["Values"].shape[1], source["Active"].shape[1]
    times = source["Times"][()].astype("f4")
    most = np.zeros(nodes, "f4")
    when = np.zeros(nodes, "f4")
    wet = np.zeros(cells, "u1")
    for first, values, active in slabs(source):
        for i, step in enumerate(values):
            wins = step > most
            np.copyto(most, step, where=wins)
            when[wins] = times[first + i]
            np.maximum(wet, active[i], out=wet)
    for name, values in (("Max Value", most), ("Max Source", (most > 0).astype("f4")),
                         ("Max Time", when)):
        group = add_dataset(output, "MaxMax/Maximums/" + name, [111111], (1, nodes), cells)
        put(group, 0, values, wet)


def trim(source, output, limit):
    shape, cells = source["Values"].shape, source["Active"].shape[1]
    group = add_dataset(output, "Trim/Temporal/trim2", source["Times"][()], shape, cells)
    for first, values, active in slabs(source):
        np.minimum(values, np.float32(limit), out=values)
        for i, step in enumerate(values):
            put(group, first + i, step, active[i])


def main():
    operation, source, target, *limit = sys.argv[1:]
    with h5py.File(source) as file, h5py.File(target, "w") as output:
        output["File Type"] = np.array(["Xmdf"], "S5")
        output["File Version"] = np.array([2.1], "f4")
        if operation == "max":
            take_maximum(file[PATH], output)
        else:
            trim(file[PATH], output, limit[0])


if __name__ == "__main__":
    main()
