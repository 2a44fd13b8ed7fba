#!/usr/bin/python3
"""Reads what --grid writes with GDAL, and what --points writes with Python's csv, and compares both
with the .2dm and .dat files themselves, in which a value is found by a search and an interpolation
of its own.

    check_with_gdal.py QUILLET EXAMPLE_MODEL
"""

import csv
import math
import os
import random
import struct
import subprocess
import sys
import tempfile

import numpy as np
from osgeo import gdal, osr

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from result_files import check, read_dat  # noqa: E402

gdal.UseExceptions()
gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")  # statistics are not to be stored
NO_DATA = -9999.0
MAXIMA = 99999.0


# ---- The inputs, read without the program ----


def read_mesh(name):
    nodes, elements = {}, {}
    for line in open(name):
        card = line.split()
        if line.startswith("ND"):
            nodes[int(card[1])] = (float(card[2]), float(card[3]))
        elif line[:3] in ("E3T", "E4Q", "E9Q"):
            elements[int(card[1])] = [int(text) - 1 for text in card[2 : 2 + int(line[1])]]
    xy = np.array([nodes[i] for i in range(1, len(nodes) + 1)])
    return xy, [elements[i] for i in range(1, len(elements) + 1)]


# ---- Values found another way: parts are tested one after the other ----


class Searcher:
    def __init__(self, mesh):
        self.xy, elements = mesh
        self.parts = []  # element, corners in order around it
        for element, ids in enumerate(elements):
            if len(ids) < 9:
                self.parts.append((element, ids))
            else:
                # The card goes around the element, corner, mid-side, corner, ...; then the centre.
                for i in range(0, 8, 2):
                    quarter = [ids[i], ids[(i + 1) % 8], ids[8], ids[(i + 7) % 8]]
                    self.parts.append((element, quarter))
        boxes = [(self.xy[ids].min(0), self.xy[ids].max(0)) for _, ids in self.parts]
        self.low = np.array([box[0] for box in boxes])
        self.high = np.array([box[1] for box in boxes])

    def places(self, point):
        """(element, node ids, weights) of the parts around a point; None when it is on an edge."""
        near = np.flatnonzero((self.low <= point).all(1) & (point <= self.high).all(1))
        found = []
        for part in near:
            element, ids = self.parts[part]
            corners = self.xy[ids]
            edges = np.roll(corners, -1, 0) - corners
            away = point - corners
            sides = edges[:, 0] * away[:, 1] - edges[:, 1] * away[:, 0]
            if (np.abs(sides) < 1e-6 * (edges**2).sum(1)).any():
                return None
            if (sides > 0).all() or (sides < 0).all():
                found.append((element, ids, self.weights(corners, point)))
        return found

    def weights(self, corners, point):
        if len(corners) == 3:
            matrix = np.vstack([corners.T, np.ones(3)])
            return np.linalg.solve(matrix, [*point, 1])
        s = t = 0.5
        for _ in range(50):
            shape = np.array([(1 - s) * (1 - t), s * (1 - t), s * t, (1 - s) * t])
            ds = np.array([t - 1, 1 - t, t, -t]) @ corners
            dt = np.array([s - 1, -s, s, 1 - s]) @ corners
            step = np.linalg.solve(np.array([ds, dt]).T, point - shape @ corners)
            s, t = s + step[0], t + step[1]
        return shape

    def value(self, places, statuses, values):
        for element, ids, weights in places:
            if statuses[element] == 1:
                return float(weights @ values[ids].astype(float))
        return NO_DATA


def magnitudes(values):
    return values if values.ndim == 1 else np.hypot(values[:, 0], values[:, 1])


# ---- The checks ----


class Folder:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder

    def path(self, name):
        return os.path.join(self.folder, name)

    def run(self, *arguments):
        command = [self.program, "-b", *arguments]
        result = subprocess.run(command, cwd=self.folder, stdin=subprocess.DEVNULL,
                                capture_output=True, text=True, timeout=120)
        check(result.returncode == 0 and "ERROR" not in result.stdout,
              " ".join(command) + "\n" + result.stdout)
        return result.stdout

    def bytes(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()


def check_layout(dataset, xy, size):
    left, across, skew, top, skew2, down = dataset.GetGeoTransform()
    check((across, skew, skew2, down) == (size, 0, 0, -size), "cell size")
    for edge in (left, top):
        check(abs(edge / size - round(edge / size)) < 1e-9, "edges are multiples of the cell size")
    right, bottom = left + size * dataset.RasterXSize, top - size * dataset.RasterYSize
    low, high = xy.min(0), xy.max(0)
    check(0 <= low[0] - left < size and 0 <= right - high[0] < size, "columns around the mesh")
    check(0 <= low[1] - bottom < size and 0 <= top - high[1] < size, "rows around the mesh")


def check_values(dataset, band, searcher, step, samples):
    left, size, _, top, _, _ = dataset.GetGeoTransform()
    cells = band.ReadAsArray()
    rows, columns = cells.shape
    compared = wet = 0
    for _ in range(samples):
        row, column = random.randrange(rows), random.randrange(columns)
        point = np.array([left + (column + 0.5) * size, top - (row + 0.5) * size])
        places = searcher.places(point)
        if places is None:
            continue
        expected = searcher.value(places, step[1], magnitudes(step[2]))
        check(math.isclose(cells[row, column], expected, rel_tol=1e-5, abs_tol=1e-5),
              f"cell {row}, {column}: {cells[row, column]}, expected {expected}")
        compared += 1
        wet += expected != NO_DATA
    check(compared > samples / 2 and wet > 0, "cells are compared")


def check_statistics(band):
    cells = band.ReadAsArray().astype(float)
    there = cells[cells != NO_DATA]
    if there.size == 0:
        return
    low, high, mean, deviation = band.ComputeStatistics(False)
    for found, expected in ((low, there.min()), (high, there.max()), (mean, there.mean()),
                            (deviation, there.std())):
        check(math.isclose(found, expected, rel_tol=1e-6, abs_tol=1e-6), "statistics of a band")


def check_raster(folder, name, mesh, steps, size, samples=150):
    dataset = gdal.Open(folder.path(name))
    check_layout(dataset, mesh[0], size)
    check(dataset.RasterCount == len(steps), f"{dataset.RasterCount} bands for {len(steps)} times")
    searcher = Searcher(mesh)
    for number, step in enumerate(steps, 1):
        band = dataset.GetRasterBand(number)
        check(band.DataType == gdal.GDT_Float32, "32-bit reals")
        check(band.GetNoDataValue() == NO_DATA, "no-data value")
        if name.endswith(".tif"):
            check(band.GetDescription() == f"{step[0]:g}", "a band is called by its time")
        check_statistics(band)
        if step[1].any():
            check_values(dataset, band, searcher, step, samples)
    return dataset


def check_grids(folder, mesh, epsg):
    depths = read_dat(folder.path("run1_d.dat"))[1]
    ordinary = [step for step in depths if step[0] != MAXIMA]
    maxima = [step for step in depths if step[0] == MAXIMA]

    folder.run("--grid=17.5", f"--epsg={epsg}", "run1_d.dat")
    dataset = check_raster(folder, "run1_d(grid17.5).tif", mesh, ordinary, 17.5)
    system = osr.SpatialReference(dataset.GetProjection())
    check(system.GetAuthorityCode(None) == str(epsg), "coordinate system")
    structure = dataset.GetMetadata("IMAGE_STRUCTURE")
    check(structure["INTERLEAVE"] == "BAND" and structure["COMPRESSION"] == "DEFLATE", "planes")
    check(dataset.GetRasterBand(1).GetBlockSize() == [256, 256], "tiles")
    check(dataset.GetMetadata()["AREA_OR_POINT"] == "Area", "cells are areas")
    info = subprocess.run(["gdalinfo", folder.path("run1_d(grid17.5).tif")], capture_output=True,
                          text=True, check=True)
    check("Predictor" not in info.stderr and not info.stderr, "gdalinfo: " + info.stderr)
    check("DateTime" not in info.stdout.replace("_", ""), "no date")

    for size, output in (("1.1", "crew.tif"), ("4", "crew.asc")):
        outputs = set()
        for threads in (1, 2, 3, 8):
            folder.run(f"--grid={size}", "-t4", "-out", output, f"--threads={threads}", "run1_d.dat")
            outputs.add(folder.bytes(output))
        check(len(outputs) == 1, "any number of threads writes the same bytes")

    first = folder.bytes("run1_d(grid17.5).tif")
    folder.run("--grid=17.5", f"--epsg={epsg}", "-typed", "-out", "xmdf.tif", "run1.xmdf")
    check(folder.bytes("xmdf.tif") == first, "the raster of the XMDF file is the .dat file's")

    folder.run("--grid=4", "-t99999", "-out", "deepest", "run1_d.dat")
    dataset = check_raster(folder, "deepest.tif", mesh, maxima, 4, 400)
    check(dataset.GetProjection() == "", "no coordinate system is stated")
    folder.run("--grid=4", "-t99999", "-out", "deepest.asc", "run1_d.dat")
    ascii_grid = check_raster(folder, "deepest.asc", mesh, maxima, 4, 40)
    check((ascii_grid.ReadAsArray() == dataset.ReadAsArray()).all(), "both formats are equal")
    check(ascii_grid.GetGeoTransform() == dataset.GetGeoTransform(), "their places too")

    folder.run("--grid=20", "-t4.0004", "-dttol0.01", "-nowetdry", "-out", "speed.tif", "run1_V.dat")
    (speed,) = [step for step in read_dat(folder.path("run1_V.dat"))[1] if step[0] == 4]
    everywhere = (speed[0], np.ones_like(speed[1]), speed[2])
    check_raster(folder, "speed.tif", mesh, [everywhere], 20, 300)


def check_angles(folder):
    """Directions are not interpolated: every cell has that of a node, whichever file holds them."""
    folder.run("-va", "run1_V.dat")
    folder.run("-va", "-typeV", "run1.xmdf")
    for name, selection in (("run1_V_va.dat", ()), ("run1_V_va.xmdf", ("-s1",))):
        folder.run("--grid=15", "-t4", "-2dm", "run1.2dm", "-out", name + ".tif", *selection, name)
    check(folder.bytes("run1_V_va.dat.tif") == folder.bytes("run1_V_va.xmdf.tif"), "angles of XMDF")
    (angles,) = [step for step in read_dat(folder.path("run1_V_va.dat"))[1] if step[0] == 4]
    cells = gdal.Open(folder.path("run1_V_va.dat.tif")).ReadAsArray()
    there = cells[cells != NO_DATA]
    check(there.size > 0 and np.isin(there, angles[2]).all(), "angles are those of nodes")


def check_points(folder, mesh):
    searcher = Searcher(mesh)
    depths = [step for step in read_dat(folder.path("run1_d.dat"))[1] if step[0] != MAXIMA]
    speeds = [step for step in read_dat(folder.path("run1_V.dat"))[1] if step[0] != MAXIMA]
    low, high = mesh[0].min(0), mesh[0].max(0)
    gauges = {}
    while len(gauges) < 60:
        point = low + (high - low) * [random.random(), random.random()]
        places = searcher.places(point)
        if places is not None:
            gauges[f"gauge {len(gauges)}, \"A\""] = (point, places)
    with open(folder.path("gauges.csv"), "w", newline="", encoding="utf-8-sig") as file:
        writer = csv.writer(file)
        writer.writerow(["Y", "remark", "NAME", "X"])
        for name, (point, _) in gauges.items():
            writer.writerow([repr(float(point[1])), "a, b", name, repr(float(point[0]))])

    def series(name):
        with open(folder.path(name), newline="") as file:
            return list(csv.reader(file))

    def compare(rows, steps, component):
        check(len(rows) == 1 + len(steps), "a row per output time")
        for row, (time, statuses, values) in zip(rows[1:], steps):
            check(float(row[0]) == np.float32(time), "time of a row")
            columns = values if values.ndim == 1 else values[:, component]
            found = row[1:] if values.ndim == 1 else row[1 + component :: 2]
            for text, (_, places) in zip(found, gauges.values()):
                expected = searcher.value(places, statuses, columns)
                value = float(text) if text else NO_DATA
                check(math.isclose(value, expected, rel_tol=1e-5, abs_tol=1e-5),
                      f"time {time}: {text}, expected {expected}")

    said = folder.run("--points=gauges.csv", "run1_d.dat")
    outside = [name for name, (_, places) in gauges.items() if not places]
    check(said.count("WARNING - Point is outside the mesh: ") == len(outside), "warnings")
    rows = series("run1_d(points).csv")
    check(rows[0] == ["time", *gauges], "header of scalars")
    compare(rows, depths, 0)
    folder.run("--points=gauges.csv", "-typed", "-out", "xmdf.csv", "run1.xmdf")
    check(series("xmdf.csv") == rows, "the series of the XMDF file are the .dat file's")

    folder.run("--points=gauges.csv", "run1_V.dat")
    rows = series("run1_V(points).csv")
    check(rows[0] == ["time"] + [name + c for name in gauges for c in ("_x", "_y")], "of vectors")
    compare(rows, speeds, 0)
    compare(rows, speeds, 1)


def check_big_tiff(folder):
    """Two triangles so far apart that the tiles between them pass 4 GiB before they are packed."""
    far = 33000
    with open(folder.path("a.2dm"), "w") as mesh:
        mesh.write("MESH2D\nE3T 1 1 2 3 1\nE3T 2 4 5 6 1\n")
        nodes = [(0, 0), (3, 0), (0, 3), (far, far), (far - 3, far), (far, far - 3)]
        for number, (x, y) in enumerate(nodes, 1):
            mesh.write(f"ND {number} {x} {y} 0\n")
    with open(folder.path("a_d.dat"), "wb") as results:
        cards = (3000, 100, 3, 110, 4, 120, 1, 130, 170, 6, 180, 2, 190)
        results.write(struct.pack("<13i40s", *cards, b"depth"))
        results.write(struct.pack("<ibf2b6fi", 200, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 210))
    folder.run("--grid=1", "a_d.dat")
    check(folder.bytes("a_d(grid1).tif")[:3] == b"II\x2b", "large rasters are BigTIFFs")
    dataset = gdal.Open(folder.path("a_d(grid1).tif"))  # a band alone would not keep it open
    band = dataset.GetRasterBand(1)
    check((band.XSize, band.YSize) == (far, far), "size of a large raster")
    last = far - 1
    for column, row, expected in ((0, last, 1), (last, 0, 2), (0, 0, NO_DATA), (3, last, NO_DATA)):
        check(band.ReadAsArray(column, row, 1, 1)[0, 0] == expected, "cells of a large raster")


def main(program, example_model):
    random.seed(20)
    forms = ([], 28355), (["--quad9"], 32755)
    for options, epsg in forms:
        with tempfile.TemporaryDirectory() as name:
            subprocess.run([example_model, "--nodes", "3000", "--times", "10", "--scenarios", "1",
                            *options, name], check=True, stdout=subprocess.DEVNULL)
            folder = Folder(program, name)
            mesh = read_mesh(folder.path("run1.2dm"))
            check_grids(folder, mesh, epsg)
            check_points(folder, mesh)
            check_angles(folder)
    with tempfile.TemporaryDirectory() as name:
        check_big_tiff(Folder(program, name))


if __name__ == "__main__":
    main(*sys.argv[1:])
