#!/usr/bin/python3
"""What a script does to show a .dat file in a viewer: mesh and values as EnSight text.

Usage: peer_ensight.py BASE MESH DAT

One geometry file and one file for each output time, numbers as 1.23450e+00. numpy reads; Python's own
formatting of a whole array at once writes.
"""

import sys

import numpy as np

from peer_dat import DatFile, rows_of

KINDS = ((b"E3T", "tria3", 3), (b"E4Q", "quad4", 4))


def column(form, values):
    return (form + "\n") * len(values) % tuple(values.tolist())


def write_geometry(name, nodes, elements):
    with open(name, "w", encoding="ascii") as file:
        file.write(f"A mesh\nof a script\nnode id given\nelement id given\npart\n{1:10}\nElements\n")
        file.write(f"coordinates\n{len(nodes):10}\n" + column("%10d", nodes[:, 0]))
        for axis in range(3):
            file.write(column("%12.5e", nodes[:, 1 + axis] - (nodes[:, 1 + axis].min() if axis < 2 else 0)))
        for rows, (_, kind, corners) in zip(elements, KINDS):
            file.write(f"{kind}\n{len(rows):10}\n" + column("%10d", rows[:, 0]))
            form = "%10d" * corners + "\n"
            file.write(form * len(rows) % tuple(rows[:, 1:].ravel().tolist()))


def main():
    base, mesh, dat = sys.argv[1:]
    with open(mesh, "rb") as file:
        lines = file.readlines()
    nodes = rows_of(lines, b"ND", 4)
    elements = [rows_of(lines, card, 1 + corners).astype("i4") for card, _, corners in KINDS]
    write_geometry(base + ".geo", nodes, elements)
    for number, step in enumerate(DatFile(dat).steps(), 1):
        wet = np.zeros(len(nodes), bool)
        for rows in elements:
            wet[rows[step["status"][rows[:, 0] - 1] == 1, 1:].ravel() - 1] = True
        values = step["values"] if step["values"].ndim == 2 else step["values"][:, None]
        with open(f"{base}.{number:04}", "w", encoding="ascii") as file:
            file.write(f"A variable\npart\n{1:10}\ncoordinates\n")
            for component in values.T:
                file.write(column("%12.5e", np.where(wet, component, 0)))
            if values.shape[1] == 2:
                file.write("  0.00000e+00\n" * len(nodes))


if __name__ == "__main__":
    main()
