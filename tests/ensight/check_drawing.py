#!/usr/bin/python3
"""Measures what VTK's EnSight Gold reader draws of an export: areas of elements against those of
the mesh, output times, names, values per cell of XMDF files.

    check_drawing.py QUILLET EXAMPLE_MODEL
"""

import os
import struct
import sys
import tempfile

import h5py
import numpy as np
import vtk
from vtk.util.numpy_support import numpy_to_vtk, vtk_to_numpy

from check_with_vtk import MAXIMA, Runs, check, check_times, open_case, read_dat, read_mesh

# ---- Areas ----


def polygon_area(points):
    x, y = points[:, 0], points[:, 1]
    return abs(np.dot(x, np.roll(y, -1)) - np.dot(y, np.roll(x, -1))) / 2


def true_areas(mesh):
    """Of the elements in the order of their blocks."""
    coordinates, elements = mesh
    kinds = ["tria3", "quad4", "quad8"]
    return np.array(
        [polygon_area(coordinates[e[2]]) for kind in kinds for e in elements if e[0] == kind]
    )


def drawn_areas(grid):
    """In plan, of every cell of the grid as its pieces are drawn."""
    numbers = numpy_to_vtk(np.arange(grid.GetNumberOfCells()), deep=True)
    numbers.SetName("number of the cell")
    grid.GetCellData().AddArray(numbers)
    outside = vtk.vtkGeometryFilter()
    outside.SetInputData(grid)
    outside.Update()
    drawn = outside.GetOutput()
    of_cell = vtk_to_numpy(drawn.GetCellData().GetArray("number of the cell"))
    points = vtk_to_numpy(drawn.GetPoints().GetData()).astype(float)
    areas = np.zeros(grid.GetNumberOfCells())
    for piece in range(drawn.GetNumberOfCells()):
        ids = drawn.GetCell(piece).GetPointIds()
        corners = [ids.GetId(i) for i in range(ids.GetNumberOfIds())]
        areas[of_cell[piece]] += polygon_area(points[corners])
    return areas


def grid_of(case):
    reader, times = open_case(case)
    reader.UpdateTimeStep(times[0])
    return reader.GetOutput().GetBlock(0)


def check_area(case, mesh):
    drawn, true = drawn_areas(grid_of(case)).sum(), true_areas(mesh).sum()
    check(abs(drawn / true - 1) < 0.001, f"{case}: {drawn:.0f} m2 drawn, {true:.0f} m2 meant")
    print(f"drawn by VTK: {os.path.basename(case)} {drawn:.0f} m2 of {true:.0f} m2")


def check_cells(case, mesh, share):
    """Every cell is drawn with its area, but for a share of it."""
    name = os.path.basename(case)
    drawn, true = drawn_areas(grid_of(case)), true_areas(mesh)
    check(len(drawn) == len(true), f"{name}: {len(drawn)} elements of {len(true)}")
    ratio = drawn / true
    check(np.all(abs(ratio - 1) < share), f"{name}: areas from {ratio.min()} to {ratio.max()}")
    print(f"cells in VTK: {name} areas right within {abs(ratio - 1).max():.2%}")


# ---- Small models ----


def write_dat(name, dataset, times, values, cells):
    """Scalars (output times, values), wet everywhere."""
    with open(name, "wb") as file:
        file.write(struct.pack("<9i", 3000, 100, 3, 110, 4, 120, 1, 130, 170))
        file.write(struct.pack("<4i", values.shape[1], 180, cells, 190) + dataset.ljust(40).encode())
        for time, row in zip(times, values):
            file.write(struct.pack("<ibf", 200, 1, time) + bytes([1]) * cells)
            file.write(row.astype("<f4").tobytes())
        file.write(struct.pack("<i", 210))


def write_mesh(name, cards, nodes):
    with open(name, "w") as file:
        file.write("MESH2D   " + "".join(f"{value:14.4f}" for value in [0.0] * 8) + "\n")
        file.writelines(cards)
        for number, (x, y) in enumerate(nodes, 1):
            file.write(f"ND {number} {x:.4f} {y:.4f} {number % 7}.5 0 0 0 0\n")


def spread_squares(extent, form):
    """Patches of 3 x 3 cells of 2 m, at odd places over the whole extent, turned a little."""
    random = np.random.default_rng(5)
    cards, nodes = [], []
    for corner in np.linspace(0, extent - 10, 20):
        origin = np.array([305000.0, 6200000.0]) + corner + random.random(2)
        turn = random.random() * 0.2
        turned = np.array([[np.cos(turn), np.sin(turn)], [-np.sin(turn), np.cos(turn)]])
        steps = 7 if form == "E9Q" else 4
        first = len(nodes) + 1
        for j in range(steps):
            for i in range(steps):
                nodes.append(origin + np.array([i, j]) * (6 / (steps - 1)) @ turned)
        for j in range(3):
            for i in range(3):
                cards += cards_of_cell(form, first, steps, i, j, len(cards) + 1)
    return cards, nodes


def cards_of_cell(form, first, steps, i, j, number):
    def node(across, up):
        return first + across + steps * up

    if form == "E9Q":
        i, j = 2 * i, 2 * j
        around = [(0, 0), (1, 0), (2, 0), (2, 1), (2, 2), (1, 2), (0, 2), (0, 1), (1, 1)]
        cells = [[node(i + a, j + b) for a, b in around]]
    else:
        corners = [node(i, j), node(i + 1, j), node(i + 1, j + 1), node(i, j + 1)]
        cells = [corners] if form == "E4Q" else [corners[:3], [corners[0]] + corners[2:]]
    code = ' "  "' if form == "E3T" else ""
    return [
        f"{form} {number + k} " + " ".join(map(str, cell)) + f" 1 0 0 0{code}\n"
        for k, cell in enumerate(cells)
    ]


def check_fine_cells(runs, extent, form):
    cards, nodes = spread_squares(extent, form)
    name = f"fine_{form}_{extent}"
    write_mesh(runs.path(name + ".2dm"), cards, nodes)
    write_dat(runs.path(name + "_h.dat"), "h", [0.0], np.ones((1, len(nodes))), len(cards))
    runs.run("-out", name, name + "_h.dat", "-2dm", name + ".2dm")
    # 2 m are 32 steps of the reader's 32-bit coordinates where these are coarsest.
    check_cells(runs.path(name + ".case"), read_mesh(runs.path(name + ".2dm")), 0.05)


class Square:
    """Four nodes, one element, for many output times."""

    def __init__(self, runs):
        self.runs = runs
        write_mesh(runs.path("square.2dm"), ["E4Q 1 1 2 3 4 1 0 0 0\n"],
                   [(0, 0), (9, 0), (9, 9), (0, 9)])

    def export(self, base, dataset, times):
        values = np.arange(1, 4 * len(times) + 1).reshape(len(times), 4)
        write_dat(self.runs.path(base + "_q.dat"), dataset, times, values, 1)
        self.runs.run("-out", base, base + "_q.dat", "-2dm", "square.2dm")
        return self.runs.path(base + ".case")

    def check_times(self, base, times):
        case = self.export(base, "q", times)
        reader, found = open_case(case)
        check_times(case, found, times)
        for position, time in enumerate(found):
            reader.UpdateTimeStep(time)
            array = reader.GetOutput().GetBlock(0).GetPointData().GetArray("q")
            expected = (4 * position + 1, 4 * position + 4)
            check(array.GetRange(0) == expected, f"{case}: range at {time}")
        print("output times in VTK:", base, len(found))

    def check_name(self, base, dataset, expected):
        case = self.export(base, dataset, [0.0, 1.0, 2.0])
        reader, times = open_case(case)
        reader.UpdateTimeStep(times[-1])
        data = reader.GetOutput().GetBlock(0).GetPointData()
        names = [data.GetArrayName(i) for i in range(data.GetNumberOfArrays())]
        check(names == [expected], f"{case}: variables {names}, expected {expected}")
        check(data.GetArray(0).GetRange(0) == (9, 12), f"{case}: range of {names}")
        print("name in VTK:", expected)


# ---- Results per cell in XMDF files ----


def check_cells_of_xmdf(runs):
    dataset, steps = read_dat(runs.path("fv/run1_d.dat"))
    steps = [step for step in steps if step[0] != MAXIMA]
    with h5py.File(runs.path("cells.xmdf"), "w", libver="earliest") as file:
        file["File Type"] = np.array([b"Xmdf"], "S5")
        file["File Version"] = np.array([2.1], np.float32)
        group = file.create_group(f"flood/Temporal/{dataset}")
        group.attrs["Grouptype"] = np.array([b"DATASET SCALAR"])
        group.attrs["TimeUnits"] = np.array([b"Hours"])
        group["Times"] = np.array([step[0] for step in steps], float)
        group["Values"] = np.array([step[2] for step in steps], np.float32)
        group["Active"] = np.array([step[1] for step in steps], np.uint8)
    runs.export("cells_of_xmdf", "fv/run1.2dm", "cell", ["cells.xmdf"])


def main(quillet, example_model):
    with tempfile.TemporaryDirectory() as folder:
        runs = Runs(quillet, example_model, folder)
        for name, options in {"node": [], "q9": ["--quad9"], "fv": ["--header", "fv"]}.items():
            runs.model(name, *options)
            runs.run("-out", "area_" + name, name + "/run1_d.dat")
            check_area(runs.path(f"area_{name}.case"), read_mesh(runs.path(name, "run1.2dm")))
        check_cells_of_xmdf(runs)
        for extent in (12000, 120000):
            for form in ("E3T", "E4Q", "E9Q"):
                check_fine_cells(runs, extent, form)
        square = Square(runs)
        square.check_times("seconds", [100 + i / 360 for i in range(25)])
        square.check_times("hours", [350000 + i for i in range(6)])
        square.check_times("long", [i / 4 for i in range(300)])
        square.check_name("plain", "Depth", "Depth")
        square.check_name("marks", "a(b)[c]+d-e/f,g", "a_b__c__d_e_f_g")
        square.check_name("digits", "100yr Depth", "d100yr_Depth")
        square.check_name("comment", "#1 of all", "_1_of_all")
        square.check_name("b" * 190, "c" * 40, "c" * 40)


if __name__ == "__main__":
    main(*sys.argv[1:])
