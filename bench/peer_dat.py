#!/usr/bin/python3
"""What a good script does with .dat files: one pass, one output time at a time, numpy.

Usage: peer_dat.py MODE OUT NAME IN ...    modes and inputs as floor_dat.cpp lists them
"""

import sys

import numpy as np

NEGLIGIBLE = np.float32(1e-6)
WET_DEPTH = np.float32(0.001)


class DatFile:
    """A file whose output times all state their statuses."""

    def __init__(self, name):
        self.file = open(name, "rb")
        self.header = self.file.read(92)
        nodes, self.cells = (int.from_bytes(self.header[i:i + 4], "little") for i in (36, 44))
        self.values = (nodes, 2) if self.header[28] == 140 else (nodes,)
        self.step = np.dtype([("card", "<i4"), ("flag", "i1"), ("time", "<f4"),
                              ("status", "i1", self.cells), ("values", "<f4", self.values)])
        self.file.seek(0, 2)
        self.times = (self.file.tell() - 96) // self.step.itemsize
        self.file.seek(92)

    def steps(self, first=0, end=None):
        self.file.seek(92 + first * self.step.itemsize)
        for _ in range(first, self.times if end is None else end):
            yield np.fromfile(self.file, self.step, 1)[0]


class DatOutput:
    def __init__(self, name, dataset, like, is_vector):
        self.file = open(name, "wb")
        kind = (140 if is_vector else 130).to_bytes(4, "little")
        self.file.write(like.header[:28] + kind + like.header[32:52] + dataset.encode().ljust(40))

    def write(self, time, status, values):
        self.file.write((200).to_bytes(4, "little") + b"\1" + np.float32(time).tobytes())
        status.astype("i1", copy=False).tofile(self.file)
        values.astype("<f4", copy=False).tofile(self.file)

    def close(self):
        self.file.write((210).to_bytes(4, "little"))
        self.file.close()


def magnitudes(values):
    x, y = values[:, 0], values[:, 1]
    size = np.sqrt(x * x + y * y)
    size[(np.abs(x) <= NEGLIGIBLE) & (np.abs(y) <= NEGLIGIBLE)] = 0
    return size


def rows_of(lines, card, columns):
    """The first so many numbers of all cards of a kind."""
    text = b" ".join(b" ".join(line.split(None, columns + 1)[1:columns + 1])
                     for line in lines if line.startswith(card))
    return np.fromstring(text, sep=" ").reshape(-1, columns)


def elevations(mesh):
    with open(mesh, "rb") as file:
        nodes = rows_of(file, b"ND", 4)
    return nodes[np.argsort(nodes[:, 0]), 3].astype("f4")


def nodes_of_active_cells(mesh, status, count):
    active = np.zeros(count, bool)
    with open(mesh, "rb") as file:
        lines = file.readlines()
    rows_of(lines, b"ND", 4)
    for card, corners in ((b"E3T", 3), (b"E4Q", 4)):
        elements = rows_of(lines, card, 1 + corners).astype("i4")
        wet = status[elements[:, 0] - 1] == 1
        active[elements[wet, 1:].ravel() - 1] = True
    return active


def maximum(output, dataset, name, mesh=None, is_stored=False):
    source = DatFile(name)
    is_vector = len(source.values) == 2
    most = np.zeros(source.values, "f4")
    largest = np.zeros(source.values[0], "f4")
    when = np.zeros(source.values[0], "f4")
    status = np.zeros(source.cells, "i1")
    last = source.times - 1
    for step in source.steps(last, last + 1) if is_stored else source.steps(0, last):
        sizes = magnitudes(step["values"]) if is_vector else step["values"]
        wins = sizes > largest
        np.copyto(largest, sizes, where=wins)
        if is_vector:
            most[wins] = step["values"][wins]
        when[wins] = step["time"]
        np.maximum(status, np.abs(step["status"]), out=status)
    if is_stored:
        when[:] = step["time"]
    if mesh:
        largest[~nodes_of_active_cells(mesh, status, len(largest))] = 0
    out = DatOutput(output, dataset, source, is_vector)
    out.write(111111, status, most if is_vector else largest)
    out.write(222222, status, largest > 0)
    out.write(333333, status, when)
    out.close()


def stored_maximum(output, dataset, name):
    maximum(output, dataset, name, is_stored=True)


def each_step(output, dataset, source, is_vector, change):
    out = DatOutput(output, dataset, source, is_vector)
    for step in source.steps():
        out.write(step["time"], step["status"], change(step["values"]))
    out.close()


def trim(output, dataset, name, limit):
    source, limit = DatFile(name), np.float32(limit)

    def shorten(values):
        sizes = magnitudes(values)
        is_long = sizes >= limit
        values[is_long] *= (limit / sizes[is_long])[:, None]
        return values

    is_vector = len(source.values) == 2
    each_step(output, dataset, source, is_vector,
              shorten if is_vector else lambda values: np.minimum(values, limit))


def angle(output, dataset, name):
    each_step(output, dataset, DatFile(name), False,
              lambda values: np.degrees(np.arctan2(values[:, 0], values[:, 1])))


def difference(output, dataset, *names):
    first, *others = (DatFile(name) for name in names[:4])
    beds = [elevations(mesh) + WET_DEPTH for mesh in names[4:]]
    out = DatOutput(output, dataset, first, False)
    for steps in zip(first.steps(), *(other.steps() for other in others)):
        a, b, *levels = steps
        values = a["values"] - b["values"]
        wet = [bed < level["values"] for bed, level in zip(beds, levels)]
        both = (a["status"] == 1, b["status"] == 1)
        status = both[0] | both[1] if wet else both[0] & both[1]
        if wet:
            values[wet[0] & ~wet[1]] = 99
            values[~wet[0] & wet[1]] = -99
            values[~wet[0] & ~wet[1]] = 0
        out.write(a["time"], status, values)
    out.close()


def copy(output, name):
    with open(name, "rb") as source, open(output, "wb") as target:
        while block := source.read(1 << 20):
            target.write(block)


MODES = {"copy": copy, "max-scalar": maximum, "max-vector": maximum,
         "max-scalar-stored": stored_maximum, "max-vector-stored": stored_maximum,
         "max-water-level": maximum, "trim-scalar": trim, "trim-vector": trim, "va": angle,
         "dif": difference, "dif-wetdry": difference}

if __name__ == "__main__":
    MODES[sys.argv[1]](*sys.argv[2:])
