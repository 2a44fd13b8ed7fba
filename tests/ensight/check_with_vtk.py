#!/usr/bin/python3
"""Loads what -ensight writes with VTK's EnSight Gold reader and compares coordinates, cells, output
times and values with the .2dm, .dat and XMDF files themselves, which are read here with numpy and
h5py alone.

    check_with_vtk.py QUILLET EXAMPLE_MODEL
"""

import os
import re
import subprocess
import sys
import tempfile

import h5py
import numpy as np
import vtk
from vtk.util.numpy_support import vtk_to_numpy

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from result_files import check, read_dat  # noqa: E402

MAXIMA = 99999.0
VTK_TRIANGLE, VTK_QUAD, VTK_QUADRATIC_QUAD = 5, 9, 23


# ---- The inputs, read without the program ----


def read_mesh(name):
    """Coordinates, and per element the block it belongs to, its nodes as the block lists them, its
    corners and its centre (all nodes from 0)."""
    nodes, elements = {}, {}
    for line in open(name):
        card = line.split()
        if line.startswith("ND"):
            nodes[int(card[1])] = [float(text) for text in card[2:5]]
        elif line[:3] in ("E3T", "E4Q", "E9Q"):
            ids = [int(text) - 1 for text in card[2 : 2 + int(line[1])]]
            if line[1] == "9":
                # On the card: corner, mid-side, corner, ... and the centre.
                corners = ids[0:8:2]
                elements[int(card[1])] = ("quad8", corners + ids[1:8:2], corners, ids[8])
            else:
                turned = ids[:1] + ids[:0:-1]
                kind = "tria3" if line[1] == "3" else "quad4"
                elements[int(card[1])] = (kind, turned, turned, None)
    coordinates = np.array([nodes[i] for i in range(1, len(nodes) + 1)])
    return coordinates, [elements[i] for i in range(1, len(elements) + 1)]


def variable_name(name):
    return re.sub("[^A-Za-z0-9_.]", "_", name)


def variables_of_dat(name, with_name):
    """Output name -> list of (time or None, statuses, values); None does not change with time."""
    dataset, steps = read_dat(name)
    output = variable_name(dataset)
    maxima = "Max_" + output if with_name else "Max"
    return {
        output: [step for step in steps if step[0] != MAXIMA],
        maxima: [(None, step[1], step[2]) for step in steps if step[0] == MAXIMA],
    }


def variables_of_xmdf(name):
    prefixes = {"Temporal": "", "Maximums": "Max_", "Minimums": "Min_", "Times": "", "Fixed": "Fixed_"}
    found = {}

    def visit(path, group):
        if not isinstance(group, h5py.Group) or "Values" not in group:
            return
        folder, dataset = path.split("/")[-2:]
        cells = group["Active"][:] if "Active" in group else [None] * len(group["Times"])
        steps = zip(group["Times"][:], cells, group["Values"][:])
        if folder != "Temporal":
            steps = [(None, statuses, values) for _, statuses, values in steps]
        found[variable_name(prefixes[folder] + dataset)] = list(steps)

    with h5py.File(name) as file:
        file.visititems(visit)
    return found


# ---- What is expected of them ----

as_written = np.vectorize(lambda value: np.float32(f"{value:.4e}"), otypes=[np.float32])
as_placed = np.vectorize(
    lambda value: np.float32(f"{value:.5f}" if value >= 1000 else f"{value:.4e}"),
    otypes=[np.float32],
)


def expected_values(mesh, place, statuses, values):
    coordinates, elements = mesh
    if statuses is None:
        statuses = np.ones(len(elements), np.int8)
    if place == "node":
        wet = np.zeros(len(coordinates), bool)
        for element, status in zip(elements, statuses):
            if status == 1:
                wet[element[2]] = True
        chosen = values.astype(float)
    else:
        wet = statuses == 1
        if place == "centre":
            values = np.array(
                [values[e[3]] if e[3] is not None else values[e[2]].mean(0, float) for e in elements]
            )
        chosen = values.astype(np.float32).astype(float)
    chosen = np.where(wet if chosen.ndim == 1 else wet[:, None], chosen, 0.0)
    if place != "node":
        chosen = chosen[block_order(elements)]
    if chosen.ndim == 2:
        chosen = np.column_stack([chosen, np.zeros(len(chosen))])
    return as_written(chosen)


def block_order(elements):
    kinds = ["tria3", "quad4", "quad8"]
    return sorted(range(len(elements)), key=lambda i: (kinds.index(elements[i][0]), i))


# ---- The comparison ----


def check_grid(grid, mesh):
    coordinates, elements = mesh
    points = vtk_to_numpy(grid.GetPoints().GetData())
    shifted = coordinates - [coordinates[:, 0].min(), coordinates[:, 1].min(), 0.0]
    shifted[:, 2] = shifted[:, 2].astype(np.float32)
    check(np.array_equal(points[:, :2], as_placed(shifted[:, :2])), "coordinates")
    check(np.array_equal(points[:, 2], as_written(shifted[:, 2])), "elevations")
    types = {"tria3": VTK_TRIANGLE, "quad4": VTK_QUAD, "quad8": VTK_QUADRATIC_QUAD}
    check(grid.GetNumberOfCells() == len(elements), "number of cells")
    for cell, element in enumerate(block_order(elements)):
        kind, nodes = elements[element][:2]
        ids = grid.GetCell(cell).GetPointIds()
        found = [ids.GetId(i) for i in range(ids.GetNumberOfIds())]
        check(grid.GetCellType(cell) == types[kind] and found == nodes, f"cell {cell}")


def open_case(case):
    """The reader and all output times that it offers."""
    reader = vtk.vtkGenericEnSightReader()
    reader.SetCaseFileName(case)
    reader.UpdateInformation()
    reader.ReadAllVariablesOn()
    information = reader.GetOutputInformation(0)
    return reader, information.Get(vtk.vtkStreamingDemandDrivenPipeline.TIME_STEPS()) or []


def check_times(case, times, expected):
    # The reader keeps 32-bit times.
    check(np.array_equal(np.float32(times), np.float32(expected)), f"{case}: output times {times}")
    check(len(set(times)) == len(expected), f"{case}: output times fall together")


def check_case(case, mesh, place, variables):
    reader, times = open_case(case)
    series = max((steps for steps in variables.values() if steps[0][0] is not None), key=len)
    check_times(case, times, [step[0] for step in series])
    for position, time in enumerate(times):
        reader.UpdateTimeStep(time)
        grid = reader.GetOutput().GetBlock(0)
        if position == 0:
            check_grid(grid, mesh)
        data = grid.GetPointData() if place == "node" else grid.GetCellData()
        names = {data.GetArrayName(i) for i in range(data.GetNumberOfArrays())}
        check(names == set(variables), f"variables {names}, expected {set(variables)}")
        for name, steps in variables.items():
            _, statuses, values = steps[0 if steps[0][0] is None else position]
            expected = expected_values(mesh, place, statuses, values)
            found = vtk_to_numpy(data.GetArray(name))
            check(np.array_equal(found, expected), f"{case}: values of {name} at {time}")
            check(np.any(expected != 0), f"{name} at {time} is all dry, which tells nothing")
            array = data.GetArray(name)
            for component in range(array.GetNumberOfComponents()):
                column = expected if expected.ndim == 1 else expected[:, component]
                expected_range = (column.min(), column.max())
                check(array.GetRange(component) == expected_range, f"{case}: range of {name}")
    print("same in VTK:", os.path.basename(case), len(times), "output times", sorted(variables))


# ---- The runs ----


class Runs:
    def __init__(self, quillet, example_model, folder):
        self.quillet, self.example_model, self.folder = quillet, example_model, folder

    def model(self, name, *options):
        command = [self.example_model, "--nodes", "1000", *options, self.path(name)]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def run(self, *arguments):
        """-ensight in the folder."""
        command = [self.quillet, "-b", "-ensight", *arguments]
        subprocess.run(
            command, check=True, cwd=self.folder, stdout=subprocess.DEVNULL, stdin=subprocess.DEVNULL
        )
        case = self.path(arguments[arguments.index("-out") + 1] + ".case")
        check(os.path.exists(case), "no case file from " + " ".join(command))

    def export(self, base, mesh, place, inputs):
        self.run("-out", base, "-2dm", mesh, *inputs)
        case = self.path(base + ".case")
        inputs = [self.path(name) for name in inputs]
        variables = {}
        for name in inputs:
            is_dat = name.endswith(".dat")
            own = variables_of_dat(name, len(inputs) > 1) if is_dat else variables_of_xmdf(name)
            variables.update(own)
        check_case(case, read_mesh(self.path(mesh)), place, variables)


def write_xmdf(name, dat_files):
    """Series and stored maxima of .dat files, and a dataset without statuses."""

    def add(file, folder, dataset, steps):
        group = file.create_group(f"flood/{folder}/{dataset}")
        vector = steps[0][2].ndim == 2
        group.attrs["Grouptype"] = np.array(
            [b"DATASET VECTOR" if vector else b"DATASET SCALAR"]
        )
        group.attrs["TimeUnits"] = np.array([b"Hours"])
        group["Times"] = np.array([step[0] for step in steps], float)
        group["Values"] = np.array([step[2] for step in steps], np.float32)
        if steps[0][1] is not None:
            group["Active"] = np.array([step[1] for step in steps], np.uint8)

    with h5py.File(name, "w", libver="earliest") as file:
        file["File Type"] = np.array([b"Xmdf"], "S5")
        file["File Version"] = np.array([2.1], np.float32)
        for dat_file in dat_files:
            dataset, steps = read_dat(dat_file)
            add(file, "Temporal", dataset, [s for s in steps if s[0] != MAXIMA])
            add(file, "Maximums", dataset, [s for s in steps if s[0] == MAXIMA])
        add(file, "Fixed", "Bed", [(0.0, None, steps[0][2][:, 0] + np.float32(0.5))])


def main(quillet, example_model):
    with tempfile.TemporaryDirectory() as folder:
        runs = Runs(quillet, example_model, folder)
        runs.model("node")
        runs.model("fv", "--header", "fv")
        runs.model("q9", "--quad9")
        runs.export("run1", "node/run1.2dm", "node", ["node/run1_h.dat", "node/run1_V.dat"])
        runs.export("run2", "node/run2.2dm", "node", ["node/run2_d.dat"])
        runs.export("cells", "fv/run1.2dm", "cell", ["fv/run1_d.dat", "fv/run1_V.dat"])
        runs.export("centres", "q9/run1.2dm", "centre", ["q9/run1_V.dat"])
        runs.export("levels", "q9/run2.2dm", "centre", ["q9/run2_h.dat"])
        write_xmdf(runs.path("all.xmdf"), [runs.path("node/run1_d.dat"), runs.path("node/run1_V.dat")])
        runs.export("xmdf", "node/run1.2dm", "node", ["all.xmdf"])
        runs.export("run2_all", "node/run2.2dm", "node", ["node/run2.xmdf"])


if __name__ == "__main__":
    main(*sys.argv[1:])
